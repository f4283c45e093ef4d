#pragma once

#include "tests/macos/running/foundation/Foundation.h"

#include "platform/Event.h"

#include <cstdint>
#include <optional>
#include <vector>

// What the user and the system do with the application.

namespace harbrook::running {

/// Chooses the item of the main menu with these titles, from the menu's own on.
void chooseFromMainMenu(const std::vector<std::string>& titles);
/// Chooses the item of `menu` with these titles, from the outermost on.
void chooseFromMenu(NSMenu* menu, const std::vector<std::string>& titles);
/// The item with these titles, or nil.
[[nodiscard]] NSMenuItem* itemIn(NSMenu* menu, const std::vector<std::string>& titles, std::size_t from = 0);
/// The user clicks the application's icon in the Dock. What the delegate answered.
bool reopen(bool hasVisibleWindows);
bool closeLastWindow();
void quit();
[[nodiscard]] bool hasTerminated();
void setCurrentEvent(std::optional<EventType> type);

} // namespace harbrook::running
