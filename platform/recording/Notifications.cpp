#include "platform/recording/Notifications.h"

#include "platform/recording/Format.h"
#include "platform/recording/View.h"
#include "platform/recording/Window.h"

namespace harbrook::recording {

namespace {

class Token final : public ObserverToken {};

} // namespace

std::shared_ptr<ObserverToken> NotificationCenter::addObserverForName(
    NotificationName name, const std::shared_ptr<harbrook::View>& object, ObserverQueue queue,
    std::function<void()> block) {
    const auto own = std::dynamic_pointer_cast<View>(object);
    refuseIf(!own, "an observer without a view to observe");
    return add(name, object.get(), own->name(), queue, std::move(block));
}

std::shared_ptr<ObserverToken> NotificationCenter::addObserverForName(
    NotificationName name, const std::shared_ptr<harbrook::Window>& object, ObserverQueue queue,
    std::function<void()> block) {
    refuseIf(!object, "an observer without a window to observe");
    return add(name, object.get(), "window", queue, std::move(block));
}

std::shared_ptr<ObserverToken> NotificationCenter::add(
    NotificationName name, const void* object, const std::string& objectName, ObserverQueue queue,
    std::function<void()> block) {
    world_->noteOnMain(
        "notifications addObserver: " + format(name) + " of " + objectName +
        (queue == ObserverQueue::mainQueue ? " on the main queue" : ""));
    observers_.push_back(std::make_shared<const Observer>(Observer{name, object, std::move(block)}));
    return std::make_shared<Token>();
}

void NotificationCenter::post(NotificationName name, const void* object) {
    const auto observers = observers_;
    for (const auto& observer : observers) {
        if (observer->name == name && observer->object == object) observer->block();
    }
}

void DistributedNotificationCenter::addObserverForName(
    const std::string& name, std::function<void(const UserInfo&)> block) {
    world_->noteOnMain("distributedNotifications addObserver: " + name);
    observers_.push_back(std::make_shared<const Observer>(Observer{name, std::move(block)}));
}

void DistributedNotificationCenter::simulateNotification(const std::string& name, UserInfo userInfo) {
    for (const auto& observer : observers_) {
        if (observer->name != name) continue;
        world_->scheduler.addMainBlock(0, [observer, userInfo] { observer->block(userInfo); });
    }
}

} // namespace harbrook::recording
