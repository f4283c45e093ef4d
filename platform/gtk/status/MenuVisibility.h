#pragma once

#include <chrono>

namespace harbrook::gtk {

/// Whether the published menu is on the screen, as far as its hosts tell. Some say that they are about to
/// show it, some that it has opened and closed, some all of these, in one call or in several.
class MenuVisibility {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// A host is about to show the menu. Whether this begins an opening that was not known yet.
    [[nodiscard]] bool aboutToShow(Time now);
    /// A host has opened the menu. Whether this begins an opening that was not known yet.
    [[nodiscard]] bool opened(Time now);
    /// The menu was closed, or an item of it was chosen.
    void closed() { isOpen_ = false; }
    [[nodiscard]] bool isOpen(Time now) const;

private:
    /// Calls that belong to one opening arrive within this time of the first.
    static constexpr std::chrono::milliseconds sameOpening{500};
    /// A host that does not say "opened" does not say "closed" either; this is how long one of its menus is
    /// taken to be open. Such hosts follow a change in the open menu, but do not make it larger, so the new
    /// menu should be theirs while the old one is surely closed, and soon.
    static constexpr std::chrono::seconds longestLook{20};

    bool begin(Time now);

    bool isOpen_ = false;
    /// The host said "opened", so it will say "closed".
    bool willClose_ = false;
    Time since_;
};

} // namespace harbrook::gtk
