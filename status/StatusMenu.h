#pragma once

#include "platform/Menu.h"
#include "status/State.h"

#include <cstddef>
#include <optional>
#include <string>

namespace harbrook {

/// How many projects the menu bar shows as running.
[[nodiscard]] std::size_t listedProjectCount(const State& state);

/// The title beside the icon: a blank and the number of listed projects, or nothing when there are none.
[[nodiscard]] std::string statusTitle(const std::optional<State>& state);

/// The whole status menu for one snapshot, or for the lack of one.
[[nodiscard]] Menu statusMenu(const std::optional<State>& state);

} // namespace harbrook
