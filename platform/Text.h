#pragma once

#include "platform/Color.h"

#include <optional>
#include <string>

namespace harbrook {

enum class FontWeight { medium };

/// The platform's own interface font, in its usual weight unless another is named. Sizes are points.
struct Font {
    double size = 0;
    std::optional<FontWeight> weight = {};

    [[nodiscard]] static Font systemFontOfSize(double size) { return {size}; }
    [[nodiscard]] static Font systemFontOfSize(double size, FontWeight weight) { return {size, weight}; }

    bool operator==(const Font&) const = default;
};

enum class TextAlignment { natural, center };

/// Text with one font and one colour over the whole of it.
struct AttributedString {
    std::string string;
    Font font;
    Color foregroundColor;
};

} // namespace harbrook
