#pragma once

#include "platform/Image.h"
#include "platform/Menu.h"

#include <memory>
#include <string>

namespace harbrook {

enum class ImagePosition { imageLeading = 7 };

/// What shows in the menu bar. Main thread.
class StatusBarButton {
public:
    virtual ~StatusBarButton() = default;
    virtual void setTitle(const std::string& title) = 0;
    virtual void setImage(const Image& image) = 0;
    virtual void setImagePosition(ImagePosition position) = 0;
};

/// An item of the system menu bar. It stays there for as long as the object lives. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;
    [[nodiscard]] virtual std::shared_ptr<StatusBarButton> button() = 0;
    /// Installs the menu for the next opening; a menu that is on the screen is left alone. Installing an
    /// equal menu is cheap and has no effect that anyone could see. `delegate` hears when the menu opens.
    virtual void setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) = 0;
};

inline constexpr double NSVariableStatusItemLength = -1;

class StatusBar {
public:
    virtual ~StatusBar() = default;
    /// `length` is in points, or `NSVariableStatusItemLength`.
    [[nodiscard]] virtual std::shared_ptr<StatusItem> statusItemWithLength(double length) = 0;
};

} // namespace harbrook
