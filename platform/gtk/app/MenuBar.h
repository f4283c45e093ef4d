#pragma once

#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// The menu bar inside a window. It lies hidden until Alt is tapped or F10 is pressed, stands over the top of
/// the content without moving it, and goes away once it has been used or left. Nothing where the desktop
/// shows the menu itself.
class MenuBar {
public:
    MenuBar(GtkWindow* window, GtkOverlay* overlay, GMenuModel* model);
    MenuBar(const MenuBar&) = delete;
    MenuBar& operator=(const MenuBar&) = delete;
    ~MenuBar();

    /// Hides the bar and gives the keyboard back to whoever had it.
    void dismiss();

private:
    void toggle();
    void watchItems();
    gboolean keyPressed(guint key, GdkModifierType state, GdkEvent* press);
    gboolean itemKeyPressed(GtkWidget* item, guint key);
    void focusNeighbour(GtkWidget* item, bool next);
    void keyReleased(guint key);
    void pointerPressed(double x, double y);
    void leaveSoon();
    void leaveUnlessInUse();
    [[nodiscard]] bool isInUse() const;

    GtkWindow* window_;
    GtkOverlay* overlay_;
    GObjectPtr<GtkWidget> bar_;
    GObjectPtr<GtkWidget> focusBefore_;
    bool altIsTapped_ = false;
    std::unique_ptr<GdkEvent, FreeWith<gdk_event_unref>> lastPress_;
    guint pendingLeave_ = 0;
    GtkEventController* keys_ = nullptr;
    GtkEventController* pointer_ = nullptr;
    SignalConnections connections_;
};

} // namespace harbrook::gtk
