#pragma once

#include "platform/StatusItem.h"
#include "platform/recording/World.h"

#include <memory>
#include <optional>
#include <string>

namespace harbrook::recording {

class StatusBarButton final : public harbrook::StatusBarButton {
public:
    explicit StatusBarButton(WorldPtr world) : world_(std::move(world)) {}

    void setTitle(const std::string& title) override;
    void setImage(const Image& image) override;
    void setImagePosition(ImagePosition position) override;

    [[nodiscard]] const std::string& title() const { return title_; }
    [[nodiscard]] const std::optional<Image>& image() const { return image_; }

private:
    WorldPtr world_;
    std::string title_;
    std::optional<Image> image_;
};

/// An item with two menus: the one installed for the next opening, and the one on the screen.
class StatusItem final : public harbrook::StatusItem {
public:
    explicit StatusItem(WorldPtr world)
        : world_(world), button_(std::make_shared<StatusBarButton>(std::move(world))) {}

    std::shared_ptr<harbrook::StatusBarButton> button() override { return button_; }
    void setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) override;

    [[nodiscard]] const StatusBarButton& shownButton() const { return *button_; }
    /// The menu for the next opening.
    [[nodiscard]] const std::optional<Menu>& menu() const { return menu_; }
    /// Whether anybody hears of its opening.
    [[nodiscard]] bool menuHasDelegate() const { return !delegate_.expired(); }
    /// The user opens the menu. What is on the screen stays as it is until the menu is opened again.
    const Menu& simulateOpen();

private:
    WorldPtr world_;
    std::shared_ptr<StatusBarButton> button_;
    std::optional<Menu> menu_;
    std::optional<Menu> menuOnScreen_;
    std::weak_ptr<MenuDelegate> delegate_;
};

class StatusBar final : public harbrook::StatusBar {
public:
    explicit StatusBar(WorldPtr world) : world_(std::move(world)) {}

    std::shared_ptr<harbrook::StatusItem> statusItemWithLength(double length) override;

    /// The one item, if it was made and still exists.
    [[nodiscard]] std::shared_ptr<StatusItem> item() const { return item_.lock(); }

private:
    WorldPtr world_;
    std::weak_ptr<StatusItem> item_;
};

} // namespace harbrook::recording
