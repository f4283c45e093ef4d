#pragma once

#include "platform/Latest.h"
#include "platform/StatusItem.h"
#include "platform/cocoa/Frameworks.h"

@class HarbrookMenuDelegate;

namespace harbrook::cocoa {

class StatusBarButton final : public harbrook::StatusBarButton {
public:
    explicit StatusBarButton(NSStatusBarButton* button) : button_(button) {}

    void setTitle(const std::string& title) override;
    void setImage(const Image& image) override;
    void setImagePosition(ImagePosition position) override;

private:
    NSStatusBarButton* button_;
    Latest<std::string> title_;
    Latest<Image> image_;
};

class StatusItem final : public harbrook::StatusItem {
public:
    explicit StatusItem(NSStatusItem* item) : item_(item) {}
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    ~StatusItem() override;

    std::shared_ptr<harbrook::StatusBarButton> button() override { return button_; }
    void setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) override;

private:
    NSStatusItem* item_;
    std::shared_ptr<StatusBarButton> button_ = std::make_shared<StatusBarButton>(item_.button);
    Latest<Menu> menu_;
    // The native menu holds its delegate weakly.
    HarbrookMenuDelegate* delegate_ = nil;
};

class StatusBar final : public harbrook::StatusBar {
public:
    std::shared_ptr<harbrook::StatusItem> statusItemWithLength(double length) override;
};

} // namespace harbrook::cocoa
