#include "platform/recording/Dispatch.h"

#include "platform/recording/Format.h"

namespace harbrook::recording {

void GlobalQueue::async(Block block) {
    world_->note("globalQueue async");
    world_->scheduler.addWorker("global " + std::to_string(++count_), std::move(block));
}

void GlobalQueue::asyncAfter(double seconds, Block block) {
    world_->scheduler.addOutsideEvent(
        seconds, [this, block = std::move(block)]() mutable { async(std::move(block)); });
}

bool Semaphore::wait(double seconds) {
    refuseIf(world_->scheduler.isMainThread(), "semaphore wait on the main thread");
    if (!world_->scheduler.blockWorker([this] { return count_ > 0; }, seconds)) return false;
    --count_;
    return true;
}

Timer::Timer(WorldPtr world, double seconds, bool repeats, Block block)
    : world_(std::move(world)), seconds_(seconds), repeats_(repeats), block_(std::move(block)) {
    refuseIf(repeats && seconds <= 0, "a repeating timer needs an interval");
}

void Timer::start() {
    world_->scheduler.addTimerCall(seconds_, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->fire();
    });
}

void Timer::invalidate() {
    world_->noteOnMain("timer invalidate");
    block_ = {};
}

void Timer::fire() {
    if (!block_) return;
    if (repeats_) start();
    // The block may invalidate its own timer.
    const auto block = block_;
    if (!repeats_) block_ = {};
    block();
}

} // namespace harbrook::recording
