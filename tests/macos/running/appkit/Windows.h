#pragma once

#include "platform/Geometry.h"
#include "tests/macos/running/foundation/Foundation.h"

// What the user does with the window.

namespace harbrook::running {

/// The one window, and the views it holds; nil when there is none.
[[nodiscard]] NSWindow* theWindow();
void closeWindow();
void resizeWindow(Size size);
void enterFullScreen();
void exitFullScreen();

/// Gives a view a place among others, as the platform does.
void adopt(NSView* parent, NSView* child);
void layOut(NSView* view, Rect frame);

} // namespace harbrook::running
