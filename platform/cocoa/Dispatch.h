#pragma once

#include "platform/Dispatch.h"
#include "platform/cocoa/Frameworks.h"

namespace harbrook::cocoa {

class DispatchQueue final : public harbrook::DispatchQueue {
public:
    explicit DispatchQueue(dispatch_queue_t queue) : queue_(queue) {}

    void async(Block block) override;
    void asyncAfter(double seconds, Block block) override;

private:
    dispatch_queue_t queue_;
};

class DispatchSemaphore final : public harbrook::DispatchSemaphore {
public:
    explicit DispatchSemaphore(int count) : semaphore_(dispatch_semaphore_create(count)) {}

    void signal() override;
    bool wait(double seconds) override;

private:
    dispatch_semaphore_t semaphore_;
};

class Timer final : public harbrook::Timer {
public:
    Timer(double seconds, bool repeats, Block block);
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer() override;

    void invalidate() override;

private:
    // The run loop keeps a timer until it is invalidated.
    NSTimer* timer_;
};

} // namespace harbrook::cocoa
