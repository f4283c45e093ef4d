#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harbrook {

/// One snapshot of what the server knows, as it answers "api/state".
struct State {
    struct Project {
        /// Display name.
        std::string name;
        /// The project's folder, by which every action names it.
        std::string path;
        bool running = false;
        /// Ports the project listens on, in the server's order.
        std::vector<std::int64_t> ports;
        /// A saved start command exists. Absent counts as no.
        std::optional<bool> hasCommand;
        /// The application itself started it, so it may be stopped from the menu. Absent counts as no.
        std::optional<bool> appRunning;
        /// The user wants it in the menu bar. Absent counts as yes.
        std::optional<bool> menubar;

        bool operator==(const Project&) const = default;
    };

    struct Stats {
        std::int64_t running = 0;
        std::int64_t postgres = 0;
        std::int64_t redis = 0;
        std::int64_t containers = 0;

        bool operator==(const Stats&) const = default;
    };

    /// In the server's order.
    std::vector<Project> projects;
    Stats stats;

    bool operator==(const State&) const = default;
};

/// The snapshot in a JSON document, or none: a required member that is missing or of another type, a number
/// that is no 64-bit integer, text that is not UTF-8 or not JSON from end to end, and nesting deeper than any
/// snapshot needs all make the whole of it absent. Unknown members are passed over; null counts as missing.
[[nodiscard]] std::optional<State> decodeState(std::string_view json);

} // namespace harbrook
