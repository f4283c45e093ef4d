#pragma once

#include "platform/Event.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <memory>

namespace harbrook::gtk {

/// Knows about the left button of the pointer over a window's content: the press that is still held, and
/// whether it is to move the window. A page hears of a press before the program hears from the page, so that
/// the press has to be remembered until then; and the release that ends a move never gets here.
class PointerPress {
public:
    explicit PointerPress(GtkWindow* window);

    /// Only presses on this widget, and on what is in it, count. None does before there is a content.
    void setContent(GtkWidget* content) { content_ = content; }

    /// The held press, or none.
    [[nodiscard]] std::shared_ptr<const Event> current();

    /// Lets the window follow the pointer until the button of `event` is released, from the moment on that
    /// the pointer has gone far enough for a drag: a click, and the second click of two, stay what they are.
    /// Does nothing unless `event` is the held press.
    void moveWindow(const Event& event);

private:
    class LeftMouseDown;

    void handle(GdkEvent* event);
    void began(GdkEvent* event);
    void startMoveWhenFarEnough(double x, double y);

    GtkWindow* window_;
    GtkWidget* content_ = nullptr;
    std::shared_ptr<const LeftMouseDown> held_;
    bool movesWindow_ = false;
    SignalConnections connections_;
};

} // namespace harbrook::gtk
