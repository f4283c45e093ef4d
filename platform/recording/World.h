#pragma once

#include "platform/recording/OperationLog.h"
#include "platform/recording/Refusal.h"
#include "platform/recording/Scheduler.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace harbrook::recording {

/// What all parts of one recorded desktop share.
struct World {
    OperationLog log;
    Scheduler scheduler;
    /// Run at the end, to untie what holds itself.
    std::vector<std::function<void()>> atEnd;

    /// Notes an operation that any thread may ask for.
    void note(std::string line) { log.note(std::move(line)); }

    /// Notes an operation of the main thread's, and refuses it anywhere else.
    void noteOnMain(std::string line) {
        requireMain(line);
        log.note(std::move(line));
    }

    void requireMain(const std::string& operation) const {
        refuseIf(!scheduler.isMainThread(), "off the main thread: " + operation);
    }
};

using WorldPtr = std::shared_ptr<World>;

} // namespace harbrook::recording
