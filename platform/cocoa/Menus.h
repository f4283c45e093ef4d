#pragma once

#include "platform/Menu.h"
#include "platform/cocoa/Frameworks.h"

namespace harbrook::cocoa {

/// The menu with its submenus. Items whose target is the delegate are sent to the application's.
[[nodiscard]] NSMenu* toNSMenu(const Menu& menu);

/// The item that sent an action, as far as the action's method may ask about it.
[[nodiscard]] MenuItem fromNSMenuItem(NSMenuItem* item);

} // namespace harbrook::cocoa
