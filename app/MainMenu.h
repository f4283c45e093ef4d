#pragma once

#include "platform/Menu.h"

namespace harbrook {

/// The whole menu bar: one untitled item for each menu, with the menu below it.
[[nodiscard]] Menu mainMenu();

} // namespace harbrook
