#pragma once

#include "platform/Dispatch.h"

namespace harbrook::gtk {

/// The concurrent queue. A block may wait for as long as it likes without holding up any other: a block that
/// finds no idle worker gets a new one. Idle workers stay for a few seconds to be used again. Workers are
/// not waited for when the process ends.
class GlobalQueue final : public DispatchQueue {
public:
    GlobalQueue();

    void async(Block block) override;
    void asyncAfter(double seconds, Block block) override;

private:
    class Workers;

    std::shared_ptr<Workers> workers_;
};

/// Runs blocks one after the other, in the order in which they were added, on workers of a concurrent queue.
class SerialQueue {
public:
    explicit SerialQueue(DispatchQueue& target);

    /// Any thread.
    void async(Block block);

private:
    class Line;

    DispatchQueue& target_;
    std::shared_ptr<Line> line_;
};

} // namespace harbrook::gtk
