#pragma once

#include "platform/Notifications.h"

#include <vector>

namespace harbrook::gtk {

/// Observers of views and windows, told in the order in which they registered. Main thread.
class NotificationCenter final : public harbrook::NotificationCenter {
public:
    std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<harbrook::View>& object, ObserverQueue queue,
        std::function<void()> block) override;
    std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<harbrook::Window>& object, ObserverQueue queue,
        std::function<void()> block) override;

    /// Tells the observers of `object` at once. Both queues amount to that here: everything that posts is on
    /// the main thread.
    void post(NotificationName name, const void* object);

private:
    struct Observer {
        NotificationName name;
        /// Weak, so that an object that is gone is not taken for one that was given its address.
        std::weak_ptr<const void> object;
        std::function<void()> block;
    };

    std::shared_ptr<ObserverToken> add(
        NotificationName name, std::weak_ptr<const void> object, std::function<void()> block);

    std::vector<std::shared_ptr<const Observer>> observers_;
};

} // namespace harbrook::gtk
