#pragma once

#include <string>

namespace harbrook::gtk {

/// While this exists, a window that is brought to the front shows the compositor `token`, by which it knows
/// that the user has asked for that elsewhere, in a panel for example (xdg-activation). Without one a Wayland
/// compositor leaves a covered window where it is. Nothing on X11, or where the token is empty. Main thread.
class ActivationToken {
public:
    explicit ActivationToken(const std::string& token);
    ActivationToken(const ActivationToken&) = delete;
    ActivationToken& operator=(const ActivationToken&) = delete;
    /// A token that no window has used is forgotten: it would not fit what the user asks for next.
    ~ActivationToken();
};

} // namespace harbrook::gtk
