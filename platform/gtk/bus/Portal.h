#pragma once

namespace harbrook::gtk::portal {

/// Where the desktop portal is on the session bus (XDG Desktop Portal, "Common conventions").
inline constexpr const char* name = "org.freedesktop.portal.Desktop";
inline constexpr const char* path = "/org/freedesktop/portal/desktop";

} // namespace harbrook::gtk::portal
