#include "platform/recording/Format.h"

#include "platform/recording/Appearance.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace harbrook::recording {

namespace {

std::string hexByte(double component) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned>(std::lround(component * 255));
    return {digits[byte >> 4 & 15], digits[byte & 15]};
}

std::string hexColor(const SRGBColor& color) {
    auto text = "#" + hexByte(color.red) + hexByte(color.green) + hexByte(color.blue);
    if (color.alpha != 1) text += " alpha " + format(color.alpha);
    return text;
}

} // namespace

std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '\n') {
            result += "\\n";
            continue;
        }
        if (character == '"' || character == '\\') result += '\\';
        result += character;
    }
    return result + '"';
}

std::string format(double number) {
    // The fewest decimals that tell it from every other number; at most as many as a `double` ever needs
    // here. `std::to_chars` does this, too, but came to macOS after the oldest one that the tests run on.
    constexpr int enough = 17;
    std::array<char, std::numeric_limits<double>::max_exponent10 + 5 + enough> buffer{};
    for (int decimals = 0;; ++decimals) {
        std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, number);
        if (decimals == enough || std::strtod(buffer.data(), nullptr) == number) return buffer.data();
    }
}

std::string format(bool flag) {
    return flag ? "true" : "false";
}

std::string format(Point point) {
    return "(" + format(point.x) + ", " + format(point.y) + ")";
}

std::string format(Size size) {
    return format(size.width) + " x " + format(size.height);
}

std::string format(Rect rect) {
    return format(rect.origin) + " " + format(rect.size);
}

std::string format(const Color& color) {
    if (const auto* fixed = std::get_if<SRGBColor>(&color.source())) return hexColor(*fixed);
    if (const auto* dynamic = std::get_if<Color::Dynamic>(&color.source())) {
        const auto& provider = **dynamic;
        return hexColor(provider(Appearance::light())) + " in light, " +
               hexColor(provider(Appearance::dark())) + " in dark";
    }
    return "secondaryLabelColor";
}

std::string format(Font font) {
    return "system " + format(font.size) + (font.weight == FontWeight::medium ? " medium" : "");
}

std::string format(const Image& image) {
    const auto* file = std::get_if<std::filesystem::path>(&image.source);
    return (file ? file->filename().string() : std::string("drawing")) + " " + format(image.size) +
           (image.isTemplate ? " template" : "");
}

std::string format(NotificationName name) {
    switch (name) {
    case NotificationName::NSViewFrameDidChangeNotification:
        return "NSViewFrameDidChangeNotification";
    case NotificationName::NSWindowDidResizeNotification:
        return "NSWindowDidResizeNotification";
    case NotificationName::NSWindowDidEndLiveResizeNotification:
        return "NSWindowDidEndLiveResizeNotification";
    case NotificationName::NSWindowDidBecomeKeyNotification:
        return "NSWindowDidBecomeKeyNotification";
    case NotificationName::NSWindowDidResignKeyNotification:
        return "NSWindowDidResignKeyNotification";
    case NotificationName::NSWindowDidDeminiaturizeNotification:
        return "NSWindowDidDeminiaturizeNotification";
    case NotificationName::NSWindowDidChangeScreenNotification:
        return "NSWindowDidChangeScreenNotification";
    case NotificationName::NSWindowWillEnterFullScreenNotification:
        return "NSWindowWillEnterFullScreenNotification";
    case NotificationName::NSWindowDidExitFullScreenNotification:
        return "NSWindowDidExitFullScreenNotification";
    }
    return "unknown notification";
}

} // namespace harbrook::recording
