#pragma once

#include <functional>
#include <memory>

namespace harbrook {

using Block = std::function<void()>;

/// A queue of blocks. Any thread may add to it.
class DispatchQueue {
public:
    virtual ~DispatchQueue() = default;
    /// Runs `block` later; returns at once.
    virtual void async(Block block) = 0;
    /// Runs `block` once `seconds` have passed from now; returns at once.
    virtual void asyncAfter(double seconds, Block block) = 0;
};

/// A counting semaphore. Any thread.
class DispatchSemaphore {
public:
    virtual ~DispatchSemaphore() = default;
    virtual void signal() = 0;
    /// Blocks until the count can be lowered, for at most `seconds`. Whether it was lowered. Never on the
    /// main thread.
    [[nodiscard]] virtual bool wait(double seconds) = 0;
};

/// A repeating or single timer of the main run loop. It stops when invalidated or when the last reference
/// goes.
class Timer {
public:
    virtual ~Timer() = default;
    virtual void invalidate() = 0;
};

} // namespace harbrook
