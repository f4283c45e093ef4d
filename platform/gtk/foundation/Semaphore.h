#pragma once

#include "platform/Dispatch.h"

#include <condition_variable>
#include <mutex>

namespace harbrook::gtk {

class Semaphore final : public DispatchSemaphore {
public:
    explicit Semaphore(int count) : count_(count) {}

    void signal() override;
    bool wait(double seconds) override;

private:
    std::mutex mutex_;
    std::condition_variable raised_;
    int count_;
};

} // namespace harbrook::gtk
