#pragma once

#include "platform/Window.h"
#include "platform/gtk/foundation/SignalConnections.h"
#include "platform/gtk/window/TitlebarButtonWidget.h"
#include "platform/gtk/window/View.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>

namespace harbrook::gtk {

/// The three title-bar buttons of a window and the two views that hold them: the title-bar view, which fills
/// the title-bar container, which keeps to the top edge of the window and to its width. Container and
/// title-bar view have no widgets, so that everything under them but the buttons gets the pointer.
class TitlebarButtons {
public:
    /// The widgets are put over `overlay`.
    TitlebarButtons(GtkOverlay* overlay, NotificationCenter& center, Size windowSize);

    [[nodiscard]] std::shared_ptr<View> button(WindowButton which) const;
    /// Keeps the container at the top edge, and as wide as the window.
    void windowSizeDidChange(Size from, Size to);
    void setVisible(bool flag);
    /// Gives the keyboard to the first of the buttons.
    void grabFocus();
    /// While the result is kept, moved buttons do not ask for another layout: the one under way will find
    /// them.
    [[nodiscard]] std::shared_ptr<void> layoutUnderWay();
    /// Where the widget of one of the buttons is to be in a window of that height, or none if `widget` is
    /// another; y grows downward.
    [[nodiscard]] std::optional<GdkRectangle> allocation(GtkWidget* widget, int windowHeight) const;

private:
    class Container;
    class Titlebar;
    class Button;

    /// What the views ask for a new layout.
    struct Layout {
        GtkWidget* host;
        bool isUnderWay = false;
        void invalidate() const {
            if (!isUnderWay) gtk_widget_queue_allocate(host);
        }
    };

    void showSigns(bool flag);

    std::shared_ptr<Layout> layout_;
    std::shared_ptr<Container> container_;
    std::shared_ptr<Titlebar> titlebar_;
    std::array<std::shared_ptr<Button>, 3> buttons_;
    SignalConnections connections_;
};

} // namespace harbrook::gtk
