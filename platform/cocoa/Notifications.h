#pragma once

#include "platform/Notifications.h"

namespace harbrook::cocoa {

class NotificationCenter final : public harbrook::NotificationCenter {
public:
    std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<View>& object, ObserverQueue queue,
        std::function<void()> block) override;
    std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<Window>& object, ObserverQueue queue,
        std::function<void()> block) override;
};

class DistributedNotificationCenter final : public harbrook::DistributedNotificationCenter {
public:
    void addObserverForName(const std::string& name, std::function<void(const UserInfo&)> block) override;
};

} // namespace harbrook::cocoa
