#pragma once

#include "platform/Error.h"
#include "platform/Geometry.h"
#include "platform/Network.h"
#include "platform/URL.h"
#include "platform/Value.h"
#include "platform/cocoa/Frameworks.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// The one border between the core's values and the platform's objects. Any thread.

NS_ASSUME_NONNULL_BEGIN

namespace harbrook::cocoa {

/// Text that is not UTF-8 becomes the empty string.
[[nodiscard]] NSString* toNSString(std::string_view text);
/// None becomes the empty string.
[[nodiscard]] std::string fromNSString(NSString* _Nullable text);
[[nodiscard]] NSArray<NSString*>* toNSArray(const std::vector<std::string>& texts);
[[nodiscard]] NSData* toNSData(std::string_view bytes);
[[nodiscard]] std::string fromNSData(NSData* _Nullable data);

/// None when the platform takes `url` for no URL.
[[nodiscard]] NSURL* _Nullable toNSURL(const URL& url);
[[nodiscard]] std::optional<URL> fromNSURL(NSURL* _Nullable url);
[[nodiscard]] NSURL* fileURL(const std::filesystem::path& path);
[[nodiscard]] std::optional<std::filesystem::path> pathOf(NSURL* _Nullable url);

[[nodiscard]] NSRect toNSRect(Rect rect);
[[nodiscard]] Rect fromNSRect(NSRect rect);

[[nodiscard]] Error fromNSError(NSError* error);
[[nodiscard]] std::optional<Error> optionalError(BOOL succeeded, NSError* _Nullable error);

/// A property-list-like object; one of any other class is none.
[[nodiscard]] std::optional<Value> fromObject(id _Nullable object);
/// Entries whose key is not a string or whose value cannot be handed over are left out.
[[nodiscard]] Value::Dictionary fromNSDictionary(NSDictionary* dictionary);

[[nodiscard]] NSURLRequest* toNSURLRequest(const URLRequest& request);

} // namespace harbrook::cocoa

NS_ASSUME_NONNULL_END
