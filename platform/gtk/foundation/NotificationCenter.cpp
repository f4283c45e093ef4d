#include "platform/gtk/foundation/NotificationCenter.h"

#include "platform/View.h"
#include "platform/Window.h"

namespace harbrook::gtk {

namespace {

class Token final : public ObserverToken {};

} // namespace

std::shared_ptr<ObserverToken> NotificationCenter::addObserverForName(
    NotificationName name, const std::shared_ptr<harbrook::View>& object, ObserverQueue /*queue*/,
    std::function<void()> block) {
    return add(name, object, std::move(block));
}

std::shared_ptr<ObserverToken> NotificationCenter::addObserverForName(
    NotificationName name, const std::shared_ptr<harbrook::Window>& object, ObserverQueue /*queue*/,
    std::function<void()> block) {
    return add(name, object, std::move(block));
}

std::shared_ptr<ObserverToken> NotificationCenter::add(
    NotificationName name, std::weak_ptr<const void> object, std::function<void()> block) {
    observers_.push_back(
        std::make_shared<const Observer>(Observer{name, std::move(object), std::move(block)}));
    return std::make_shared<Token>();
}

void NotificationCenter::post(NotificationName name, const void* object) {
    std::erase_if(observers_, [](const auto& observer) { return observer->object.expired(); });
    // A block may register further observers; they hear of the next notification.
    const auto observers = observers_;
    for (const auto& observer : observers) {
        if (observer->name == name && observer->object.lock().get() == object) observer->block();
    }
}

} // namespace harbrook::gtk
