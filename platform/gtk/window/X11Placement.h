#pragma once

#include "platform/Geometry.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace harbrook::gtk {

/// Knows and chooses the place of a window where the desktop lets a program do that, which is on X11. On
/// Wayland the compositor places windows, and every operation here does nothing.
/// Places are those of the window's top left corner, without its shadow, in points; y grows downward.
class X11Placement {
public:
    /// `moved` is called whenever the window has come to another place.
    X11Placement(GtkWindow* window, std::function<void()> moved);

    /// Where the window is or was last, once that is known.
    [[nodiscard]] std::optional<Point> topLeft() const;
    /// Where the window is to be when it is shown the next time.
    void setTopLeft(Point topLeft);
    /// Puts a window of `size` in the middle of the screen when it is shown the next time.
    void center(Size size);

    /// The time of the X server, which a request to be brought to the front has to carry.
    [[nodiscard]] std::uint32_t serverTime() const;
    /// The X11 window, or 0.
    [[nodiscard]] std::int64_t identifier() const;

private:
    void realized();
    void place();
    void surfaceMoved(bool isRelativeToScreen, int x, int y);

    GtkWindow* window_;
    std::function<void()> moved_;
    std::optional<Point> surfaceTopLeft_;
    std::optional<Point> wanted_;
    bool isListening_ = false;
    SignalConnections connections_;
};

/// The size of the first screen.
[[nodiscard]] Size screenSize();

/// Whether a window of `size` with its corner there could be seen and got hold of on one of the screens.
[[nodiscard]] bool isReachable(Point topLeft, Size size);

} // namespace harbrook::gtk
