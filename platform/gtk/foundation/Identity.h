#pragma once

namespace harbrook::gtk {

/// The name by which desktop, session bus, icon theme and launcher know the program.
inline constexpr const char* applicationIdentifier = "com.brackenforge.harbrook";
/// The name by which people know it.
inline constexpr const char* applicationName = "Harbrook";

} // namespace harbrook::gtk
