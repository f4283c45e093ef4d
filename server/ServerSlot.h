#pragma once

#include "platform/Process.h"

#include <memory>
#include <mutex>
#include <optional>

namespace harbrook {

/// Holds the one server child. The launcher's worker fills it, the main thread empties it at quit; whichever
/// comes first, no child is started that nobody would stop. Any thread.
class ServerSlot {
public:
    /// Launches `task` and keeps it. The error, or none; launching after the end has begun is an error.
    std::optional<Error> launch(const std::shared_ptr<Task>& task);
    /// Sends the terminate request to the child, if there is one, and blocks until it has exited, without
    /// limit.
    void terminateAndWait();
    /// The child, or none.
    [[nodiscard]] std::shared_ptr<Task> task() const;

private:
    mutable std::mutex mutex_;
    std::shared_ptr<Task> task_;
    bool ended_ = false;
};

} // namespace harbrook
