#include "platform/gtk/foundation/GlobalQueue.h"

#include "platform/gtk/foundation/Clock.h"
#include "platform/gtk/foundation/Thread.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto idleLifetime = std::chrono::seconds(5);

} // namespace

/// The threads and what waits for them. Each thread shares ownership, so that a thread that is still busy
/// when the queue goes finds everything in place.
class GlobalQueue::Workers : public std::enable_shared_from_this<Workers> {
public:
    void add(Block block) {
        const std::lock_guard lock(mutex_);
        ready_.push_back(std::move(block));
        staff();
        wake_.notify_one();
    }

    void addDelayed(Clock::time_point due, Block block) {
        const std::lock_guard lock(mutex_);
        delayed_.emplace(due, std::move(block));
        staff();
        // Every idle worker waits for the first delayed block, which may be this one now.
        wake_.notify_all();
    }

private:
    /// Keeps an idle worker for each block that is ready, and one to watch the clock for delayed blocks. When
    /// the system has no thread left, blocks wait for the workers there are; the last one never retires.
    void staff() {
        const std::size_t wanted = ready_.size() + (delayed_.empty() ? 0 : 1);
        try {
            while (idle_ < wanted) {
                startThread("worker", [self = shared_from_this()] { self->work(); });
                ++idle_;
            }
        } catch (const std::system_error&) {
        }
    }

    void work() noexcept {
        std::unique_lock lock(mutex_);
        auto retirement = Clock::now() + idleLifetime;
        for (;;) {
            takeDue();
            if (!ready_.empty()) {
                Block block = std::move(ready_.front());
                ready_.pop_front();
                --idle_;
                staff();
                lock.unlock();
                block();
                block = nullptr;
                lock.lock();
                ++idle_;
                retirement = Clock::now() + idleLifetime;
            } else if (Clock::now() >= retirement && idle_ > 1) {
                --idle_;
                return;
            } else if (const auto moment = nextMoment(retirement)) {
                wake_.wait_until(lock, *moment);
            } else {
                wake_.wait(lock);
            }
        }
    }

    void takeDue() {
        const auto end = delayed_.upper_bound(Clock::now());
        for (auto position = delayed_.begin(); position != end; ++position) {
            ready_.push_back(std::move(position->second));
        }
        delayed_.erase(delayed_.begin(), end);
    }

    /// When there is something to do though nobody calls: a delayed block is due, or it is time to retire.
    [[nodiscard]] std::optional<Clock::time_point> nextMoment(Clock::time_point retirement) const {
        std::optional<Clock::time_point> moment;
        if (idle_ > 1) moment = retirement;
        if (!delayed_.empty())
            moment = std::min(moment.value_or(Clock::time_point::max()), delayed_.begin()->first);
        return moment;
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Block> ready_;
    std::multimap<Clock::time_point, Block> delayed_;
    /// Workers that are not running a block, those that have yet to begin included.
    std::size_t idle_ = 0;
};

GlobalQueue::GlobalQueue() : workers_(std::make_shared<Workers>()) {}

void GlobalQueue::async(Block block) {
    workers_->add(std::move(block));
}

void GlobalQueue::asyncAfter(double seconds, Block block) {
    workers_->addDelayed(momentAfter(seconds), std::move(block));
}

class SerialQueue::Line {
public:
    /// Whether nobody runs the blocks yet.
    bool add(Block block) {
        const std::lock_guard lock(mutex_);
        blocks_.push_back(std::move(block));
        return !std::exchange(running_, true);
    }

    void run() {
        while (Block block = next())
            block();
    }

private:
    Block next() {
        const std::lock_guard lock(mutex_);
        if (blocks_.empty()) {
            running_ = false;
            return nullptr;
        }
        Block block = std::move(blocks_.front());
        blocks_.pop_front();
        return block;
    }

    std::mutex mutex_;
    std::deque<Block> blocks_;
    bool running_ = false;
};

SerialQueue::SerialQueue(DispatchQueue& target) : target_(target), line_(std::make_shared<Line>()) {}

void SerialQueue::async(Block block) {
    if (line_->add(std::move(block))) target_.async([line = line_] { line->run(); });
}

} // namespace harbrook::gtk
