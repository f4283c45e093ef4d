#pragma once

#include "platform/Dispatch.h"
#include "platform/recording/World.h"

namespace harbrook::recording {

class MainQueue final : public DispatchQueue {
public:
    explicit MainQueue(WorldPtr world) : world_(std::move(world)) {}
    void async(Block block) override { world_->scheduler.addMainBlock(0, std::move(block)); }
    void asyncAfter(double seconds, Block block) override {
        world_->scheduler.addMainBlock(seconds, std::move(block));
    }

private:
    WorldPtr world_;
};

/// Each block becomes a worker called "global 1", "global 2" and so on.
class GlobalQueue final : public DispatchQueue {
public:
    explicit GlobalQueue(WorldPtr world) : world_(std::move(world)) {}
    void async(Block block) override;
    void asyncAfter(double seconds, Block block) override;

private:
    WorldPtr world_;
    int count_ = 0;
};

class Semaphore final : public DispatchSemaphore {
public:
    Semaphore(WorldPtr world, int count) : world_(std::move(world)), count_(count) {}
    void signal() override { ++count_; }
    bool wait(double seconds) override;

private:
    WorldPtr world_;
    int count_;
};

class Timer final : public harbrook::Timer, public std::enable_shared_from_this<Timer> {
public:
    Timer(WorldPtr world, double seconds, bool repeats, Block block);
    void start();
    void invalidate() override;

    [[nodiscard]] double interval() const { return seconds_; }
    [[nodiscard]] bool repeats() const { return repeats_; }
    [[nodiscard]] bool isValid() const { return static_cast<bool>(block_); }

private:
    void fire();

    WorldPtr world_;
    double seconds_;
    bool repeats_;
    Block block_;
};

} // namespace harbrook::recording
