#pragma once

#include "platform/View.h"
#include "platform/gtk/window/View.h"

#include <optional>

namespace harbrook::gtk {

/// A text that the user cannot edit. It stands in its superview by constraints: centred, no wider than it may
/// be, its lines broken between words.
class TextField final : public View, public harbrook::TextField {
public:
    TextField(NotificationCenter& center, const std::string& text);

    void setStringValue(const std::string& text) override;
    void setFont(Font font) override;
    void setTextColor(Color color) override;
    void setAlignment(TextAlignment alignment) override;
    /// Text beyond the last line is cut off, with an ellipsis.
    void setMaximumNumberOfLines(int lines) override;
    /// There are only constraints here.
    void setTranslatesAutoresizingMaskIntoConstraints(bool /*flag*/) override {}
    void setHidden(bool flag) override;

    void setMaximumWidth(double width);

private:
    void applyStyle();
    [[nodiscard]] GtkLabel* label() const;

    Font font_ = Font::systemFontOfSize(13);
    std::optional<Color> color_;
    std::shared_ptr<void> appearanceObserver_;
};

[[nodiscard]] std::shared_ptr<harbrook::TextField> makeLabel(
    NotificationCenter& center, const std::string& text);

} // namespace harbrook::gtk
