#pragma once

#include "platform/Notifications.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <functional>

namespace harbrook::gtk {

/// Watches what becomes of a window apart from its size and full screen: the keyboard, the task list,
/// screens.
class WindowState {
public:
    /// `report` is called with NSWindowDidBecomeKey, DidResignKey, DidDeminiaturize and DidChangeScreen.
    WindowState(GtkWindow* window, std::function<void(NotificationName)> report);

private:
    void realized(GtkWidget* window);
    void surfaceStateChanged(GdkToplevel* surface);

    std::function<void(NotificationName)> report_;
    bool isMiniaturized_ = false;
    bool isListening_ = false;
    SignalConnections connections_;
};

} // namespace harbrook::gtk
