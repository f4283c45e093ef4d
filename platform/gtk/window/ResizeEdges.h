#pragma once

#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <memory>
#include <vector>

namespace harbrook::gtk {

/// Edges and corners to resize a window by, just inside it. The toolkit has its own in the window's shadow;
/// these are for screens without a compositor, where there is no shadow, and are hidden elsewhere.
class ResizeEdges {
public:
    ResizeEdges(GtkWindow* window, GtkOverlay* overlay);

private:
    struct Edge {
        GtkWindow* window;
        GtkWidget* widget;
        GdkSurfaceEdge edge;
    };

    void add(
        GtkOverlay* overlay, GdkSurfaceEdge edge, GtkAlign horizontal, GtkAlign vertical, const char* cursor);
    void update();

    GtkWindow* window_;
    std::vector<std::unique_ptr<Edge>> edges_;
    SignalConnections connections_;
};

} // namespace harbrook::gtk
