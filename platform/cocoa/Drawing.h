#pragma once

#include "platform/Color.h"
#include "platform/Image.h"
#include "platform/Text.h"
#include "platform/cocoa/Frameworks.h"

// Colours, fonts and images as the platform's objects.

NS_ASSUME_NONNULL_BEGIN

namespace harbrook::cocoa {

/// A dynamic colour asks its provider each time the platform resolves it, on whatever thread that happens;
/// the same colour becomes the same object. Main thread.
[[nodiscard]] NSColor* toNSColor(const Color& color);
[[nodiscard]] NSFont* toNSFont(Font font);
[[nodiscard]] NSAttributedString* toNSAttributedString(const AttributedString& text);
/// None when the image's file cannot be decoded any more.
[[nodiscard]] NSImage* _Nullable toNSImage(const Image& image);

} // namespace harbrook::cocoa

NS_ASSUME_NONNULL_END
