#pragma once

#include "platform/Notifications.h"
#include "platform/recording/World.h"

#include <string>
#include <vector>

namespace harbrook::recording {

class NotificationCenter final : public harbrook::NotificationCenter {
public:
    explicit NotificationCenter(WorldPtr world) : world_(std::move(world)) {}

    std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<harbrook::View>& object, ObserverQueue queue,
        std::function<void()> block) override;
    std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<harbrook::Window>& object, ObserverQueue queue,
        std::function<void()> block) override;

    /// Calls the observers of `object` at once, in the order in which they registered. One that registers
    /// meanwhile hears of the next notification.
    void post(NotificationName name, const void* object);

    /// How many observers there are.
    [[nodiscard]] std::size_t count() const { return observers_.size(); }

private:
    struct Observer {
        NotificationName name;
        const void* object;
        std::function<void()> block;
    };

    std::shared_ptr<ObserverToken> add(
        NotificationName name, const void* object, const std::string& objectName, ObserverQueue queue,
        std::function<void()> block);

    WorldPtr world_;
    std::vector<std::shared_ptr<const Observer>> observers_;
};

class DistributedNotificationCenter final : public harbrook::DistributedNotificationCenter {
public:
    explicit DistributedNotificationCenter(WorldPtr world) : world_(std::move(world)) {}

    void addObserverForName(const std::string& name, std::function<void(const UserInfo&)> block) override;

    /// Another program posts a notification. It is delivered with the main queue.
    void simulateNotification(const std::string& name, UserInfo userInfo);

private:
    struct Observer {
        std::string name;
        std::function<void(const UserInfo&)> block;
    };

    WorldPtr world_;
    std::vector<std::shared_ptr<const Observer>> observers_;
};

} // namespace harbrook::recording
