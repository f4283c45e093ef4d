#pragma once

#include "platform/Dispatch.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace harbrook::recording {

/// Time and threads, both in the hands of the test.
///
/// The clock stands still until the test moves it. The thread that made the scheduler is the main thread;
/// what is queued for it runs only inside `runMainQueue`, `settle` or `advance`. Work that may block runs on
/// real threads that pass one baton around: at any moment either the test runs or one worker. A worker that
/// blocks hands the baton back, so that a test reads from top to bottom.
class Scheduler {
public:
    using Clock = std::chrono::nanoseconds;

    Scheduler();
    ~Scheduler();
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    /// Seconds since the start of the test.
    [[nodiscard]] double now() const { return std::chrono::duration<double>(now_).count(); }
    [[nodiscard]] bool isMainThread() const { return std::this_thread::get_id() == mainThread_; }

    /// Runs what is due, without moving the clock, until nothing is left to run: workers first, then the main
    /// thread's blocks in their order.
    void settle();
    /// Moves the clock on, from one due moment to the next, and settles at each.
    void advance(double seconds);
    /// Runs the main thread's blocks that are due, and no worker. How many there were.
    int runMainQueue();
    /// Runs workers until each of them has ended or is blocked, and nothing of the main thread's.
    void runWorkers();
    /// Runs the worker called `label`, and no other, until it has ended or is blocked.
    void runWorker(const std::string& label);

    /// The workers that could run now, oldest first.
    [[nodiscard]] std::vector<std::string> runnableWorkers() const;
    /// The workers that wait for something.
    [[nodiscard]] std::vector<std::string> blockedWorkers() const;
    /// Blocks that were given to the main queue and have not run: those for later and those that are due.
    [[nodiscard]] int pendingMainBlocks() const;
    /// All that waits for its moment: blocks, calls of timers, and what happens outside.
    [[nodiscard]] int pendingEvents() const { return static_cast<int>(events_.size()); }

    /// Which of `count` runnable workers goes next; without it the oldest does.
    void setWorkerChoice(std::function<std::size_t(std::size_t count)> choice);

    // For the services of the double.

    void addMainBlock(double seconds, Block block);
    /// A call of a timer's: it is not counted among the blocks.
    void addTimerCall(double seconds, Block call);
    /// Something that happens outside the shell, whether or not its main thread is busy.
    void addOutsideEvent(double seconds, Block event);
    void addWorker(std::string label, Block block);
    /// On a worker: waits for `condition`, at most `seconds` when given. Whether it holds.
    bool blockWorker(const std::function<bool()>& condition, std::optional<double> seconds = {});
    /// On the main thread: lets workers and outside events go on, but nothing of the main thread's, until
    /// `condition` holds. `what` says what is waited for.
    void blockMain(const std::function<bool()>& condition, const std::string& what);

    /// Ends the run: blocked workers return as if nothing had come, and what is queued is dropped.
    void shutDown();

private:
    enum class Kind { mainBlock, timerCall, outside };
    struct Event {
        Kind kind;
        Block block;
    };
    struct Worker {
        std::string label;
        Block block;
        std::thread thread;
        bool started = false;
        bool finished = false;
        std::function<bool()> condition;
        std::optional<Clock> deadline;
        std::exception_ptr error;
    };
    /// Due moment, then order of arrival.
    using Moment = std::pair<Clock, std::uint64_t>;

    void addEvent(Kind kind, double seconds, Block block);
    [[nodiscard]] bool canRun(const Worker& worker) const;
    bool runOneWorker();
    void run(std::list<Worker>::iterator worker);
    void workerMain(Worker& worker);
    bool runOneEvent(bool mainToo);
    [[nodiscard]] std::optional<Clock> nextMoment(bool mainToo) const;

    const std::thread::id mainThread_;
    Clock now_{0};
    std::uint64_t sequence_ = 0;
    std::map<Moment, Event> events_;
    std::list<Worker> workers_;
    std::function<std::size_t(std::size_t)> choice_;
    bool shutDown_ = false;

    // The baton: the worker that may run, or null when the test may.
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    Worker* running_ = nullptr;
};

} // namespace harbrook::recording
