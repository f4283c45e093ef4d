#include "server/ServerSlot.h"

namespace harbrook {

std::optional<Error> ServerSlot::launch(const std::shared_ptr<Task>& task) {
    const std::scoped_lock lock(mutex_);
    if (ended_) return Error{"Harbrook is quitting."};
    if (auto error = task->launchAndReturnError()) return error;
    task_ = task;
    return std::nullopt;
}

void ServerSlot::terminateAndWait() {
    std::shared_ptr<Task> task;
    {
        const std::scoped_lock lock(mutex_);
        ended_ = true;
        task = task_;
    }
    if (!task) return;
    task->terminate();
    task->waitUntilExit();
}

std::shared_ptr<Task> ServerSlot::task() const {
    const std::scoped_lock lock(mutex_);
    return task_;
}

} // namespace harbrook
