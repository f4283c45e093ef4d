#include "platform/gtk/foundation/Semaphore.h"

#include "platform/gtk/foundation/Clock.h"

namespace harbrook::gtk {

void Semaphore::signal() {
    // Told under the lock: the waiter may destroy the semaphore as soon as it can lower the count.
    const std::lock_guard lock(mutex_);
    ++count_;
    raised_.notify_one();
}

bool Semaphore::wait(double seconds) {
    const auto deadline = momentAfter(seconds);
    std::unique_lock lock(mutex_);
    if (!raised_.wait_until(lock, deadline, [this] { return count_ > 0; })) return false;
    --count_;
    return true;
}

} // namespace harbrook::gtk
