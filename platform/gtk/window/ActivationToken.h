#pragma once

#include <string>

namespace harbrook::gtk {

/// While this exists, a window that is brought to the front shows the compositor `token`, by which it knows
/// that the user has asked for that elsewhere, in a panel for example (xdg-activation). Without one a Wayland
/// compositor leaves a covered window where it is. Nothing on X11, or where the token is empty. Main thread.
class ActivationToken {
public:
    explicit ActivationToken(std::string token);
    ActivationToken(const ActivationToken&) = delete;
    ActivationToken& operator=(const ActivationToken&) = delete;
    /// The action is over, whether or not it has shown a window: the compositor need not expect one any more
    /// (GNOME shows a busy pointer meanwhile), and the token would not fit what the user asks for next.
    ~ActivationToken();

private:
    std::string token_;
};

} // namespace harbrook::gtk
