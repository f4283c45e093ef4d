#pragma once

#import <WebKit/WebKit.h>

#include "platform/Value.h"
#include "tests/macos/running/World.h"
#include "tests/macos/running/foundation/Kept.h"
#include "tests/macos/running/messages/Properties.h"

#include <string>
#include <string_view>

// What the stand-ins for the platform ask of each other.

namespace harbrook::running {

[[nodiscard]] NSString* text(std::string_view characters);
[[nodiscard]] std::string characters(NSString* text);
[[nodiscard]] NSData* dataOf(std::string_view bytes);
[[nodiscard]] std::string bytes(NSData* data);
[[nodiscard]] NSError* error(
    const std::string& description, NSInteger code = 0, std::string_view domain = "NSCocoaErrorDomain");
/// The object that the platform would make of a value.
[[nodiscard]] id objectOf(const Value& value);

/// Where the file with this name or address is on the machine that runs the test.
[[nodiscard]] std::filesystem::path placeOf(NSString* path);
[[nodiscard]] std::filesystem::path placeOf(NSURL* url);

/// Replaces the file as a whole. Whether that went well.
bool writeFile(const std::filesystem::path& place, std::string_view content);

/// A new object of `which`, held once.
[[nodiscard]] id make(Class which);

/// Whether `object` is of the class called `name`.
[[nodiscard]] bool isKind(id object, std::string_view name);

/// Posts a notification of `object` to those who observe it, at once.
void post(NSString* name, id object);
/// Another program posts a notification; it comes with the main queue.
void postFromOutside(NSString* name, NSDictionary* userInfo);
void forgetObservers();

} // namespace harbrook::running
