#pragma once

#include "platform/Color.h"

#include <string>

namespace harbrook {

enum class FontWeight { regular, medium };

/// The platform's own interface font. Sizes are points.
struct Font {
    double size = 0;
    FontWeight weight = FontWeight::regular;

    [[nodiscard]] static Font systemFontOfSize(double size, FontWeight weight = FontWeight::regular) {
        return {size, weight};
    }

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
