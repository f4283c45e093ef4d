#include "platform/recording/Scheduler.h"

#include "platform/recording/Refusal.h"

#include <algorithm>
#include <cmath>

namespace harbrook::recording {

namespace {

/// More steps than any test takes without letting time pass.
constexpr int stepLimit = 200'000;

/// The worker that this thread is, if it is one.
thread_local void* currentWorker = nullptr;

Scheduler::Clock toClock(double seconds) {
    return Scheduler::Clock(std::llround(seconds * 1e9));
}

} // namespace

Scheduler::Scheduler() : mainThread_(std::this_thread::get_id()) {}

Scheduler::~Scheduler() {
    shutDown();
}

void Scheduler::settle() {
    for (int step = 0; runOneWorker() || runOneEvent(true); ++step) {
        refuseIf(step == stepLimit, "settle: something queues itself again and again without time passing");
    }
}

void Scheduler::advance(double seconds) {
    refuseIf(seconds < 0, "advance: time runs forward");
    const auto end = now_ + toClock(seconds);
    settle();
    for (auto next = nextMoment(true); next && *next <= end; next = nextMoment(true)) {
        now_ = std::max(now_, *next);
        settle();
    }
    now_ = end;
}

int Scheduler::runMainQueue() {
    int count = 0;
    while (true) {
        const auto found = std::ranges::find_if(events_, [this](const auto& entry) {
            return entry.first.first <= now_ && entry.second.kind != Kind::outside;
        });
        if (found == events_.end()) return count;
        refuseIf(count == stepLimit, "runMainQueue: a block queues itself again and again");
        const auto block = std::move(found->second.block);
        events_.erase(found);
        block();
        ++count;
    }
}

void Scheduler::runWorkers() {
    while (runOneWorker()) {
    }
}

void Scheduler::runWorker(const std::string& label) {
    const auto found = std::ranges::find_if(
        workers_, [&](const Worker& worker) { return worker.label == label && canRun(worker); });
    refuseIf(found == workers_.end(), "runWorker: no worker called " + label + " could run");
    run(found);
}

std::vector<std::string> Scheduler::runnableWorkers() const {
    std::vector<std::string> labels;
    for (const auto& worker : workers_) {
        if (canRun(worker)) labels.push_back(worker.label);
    }
    return labels;
}

std::vector<std::string> Scheduler::blockedWorkers() const {
    std::vector<std::string> labels;
    for (const auto& worker : workers_) {
        if (!canRun(worker)) labels.push_back(worker.label);
    }
    return labels;
}

int Scheduler::pendingMainBlocks() const {
    return static_cast<int>(std::ranges::count_if(
        events_, [](const auto& entry) { return entry.second.kind == Kind::mainBlock; }));
}

void Scheduler::setWorkerChoice(std::function<std::size_t(std::size_t)> choice) {
    choice_ = std::move(choice);
}

void Scheduler::addMainBlock(double seconds, Block block) {
    addEvent(Kind::mainBlock, seconds, std::move(block));
}

void Scheduler::addTimerCall(double seconds, Block call) {
    addEvent(Kind::timerCall, seconds, std::move(call));
}

void Scheduler::addOutsideEvent(double seconds, Block event) {
    addEvent(Kind::outside, seconds, std::move(event));
}

void Scheduler::addEvent(Kind kind, double seconds, Block block) {
    if (shutDown_) return;
    events_.emplace(Moment{now_ + toClock(seconds), sequence_++}, Event{kind, std::move(block)});
}

void Scheduler::addWorker(std::string label, Block block) {
    if (shutDown_) return;
    auto& worker = workers_.emplace_back();
    worker.label = std::move(label);
    worker.block = std::move(block);
}

bool Scheduler::canRun(const Worker& worker) const {
    if (worker.finished) return false;
    if (!worker.started || !worker.condition) return true;
    return worker.condition() || (worker.deadline && *worker.deadline <= now_);
}

bool Scheduler::runOneWorker() {
    std::vector<std::list<Worker>::iterator> runnable;
    for (auto worker = workers_.begin(); worker != workers_.end(); ++worker) {
        if (canRun(*worker)) runnable.push_back(worker);
        if (!runnable.empty() && !choice_) break;
    }
    if (runnable.empty()) return false;
    run(runnable[choice_ ? choice_(runnable.size()) % runnable.size() : 0]);
    return true;
}

void Scheduler::run(std::list<Worker>::iterator worker) {
    {
        std::unique_lock lock(mutex_);
        refuseIf(running_ != nullptr, "a worker cannot run workers");
        running_ = &*worker;
        if (!worker->started) {
            worker->started = true;
            worker->thread = std::thread([this, &running = *worker] { workerMain(running); });
        }
        changed_.notify_all();
        changed_.wait(lock, [this] { return running_ == nullptr; });
    }
    if (!worker->finished) return;
    worker->thread.join();
    const auto error = worker->error;
    // What the block held goes here, on the main thread, where the last owner of the desktop may go too.
    const auto block = std::move(worker->block);
    workers_.erase(worker);
    if (error) std::rethrow_exception(error);
}

void Scheduler::workerMain(Worker& worker) {
    currentWorker = &worker;
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return running_ == &worker; });
    }
    try {
        worker.block();
    } catch (...) {
        worker.error = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    worker.finished = true;
    running_ = nullptr;
    changed_.notify_all();
}

bool Scheduler::blockWorker(const std::function<bool()>& condition, std::optional<double> seconds) {
    refuseIf(!currentWorker, "only a worker may wait here: the main thread would hang");
    auto& worker = *static_cast<Worker*>(currentWorker);
    const auto deadline = seconds ? std::optional(now_ + toClock(*seconds)) : std::nullopt;
    while (!condition()) {
        if (shutDown_ || (deadline && *deadline <= now_)) return false;
        std::unique_lock lock(mutex_);
        worker.condition = condition;
        worker.deadline = deadline;
        running_ = nullptr;
        changed_.notify_all();
        changed_.wait(lock, [&] { return running_ == &worker; });
        worker.condition = {};
        worker.deadline = {};
    }
    return true;
}

void Scheduler::blockMain(const std::function<bool()>& condition, const std::string& what) {
    for (int step = 0; !condition(); ++step) {
        if (runOneWorker() || runOneEvent(false)) continue;
        const auto next = nextMoment(false);
        if (!next || step >= stepLimit) throw WaitsForever("the main thread waits forever for " + what);
        now_ = std::max(now_, *next);
    }
}

bool Scheduler::runOneEvent(bool mainToo) {
    const auto found = std::ranges::find_if(events_, [&](const auto& entry) {
        return entry.first.first <= now_ && (mainToo || entry.second.kind == Kind::outside);
    });
    if (found == events_.end()) return false;
    const auto block = std::move(found->second.block);
    events_.erase(found);
    block();
    return true;
}

std::optional<Scheduler::Clock> Scheduler::nextMoment(bool mainToo) const {
    std::optional<Clock> next;
    const auto consider = [&](Clock moment) {
        if (!next || moment < *next) next = moment;
    };
    for (const auto& [moment, event] : events_) {
        if (mainToo || event.kind == Kind::outside) consider(moment.first);
    }
    for (const auto& worker : workers_) {
        if (worker.deadline) consider(*worker.deadline);
    }
    return next;
}

void Scheduler::shutDown() {
    shutDown_ = true;
    while (!workers_.empty()) {
        const auto worker = workers_.begin();
        if (worker->started) {
            // A refusal that comes up only now has no test left to fail.
            try {
                run(worker);
            } catch (const std::exception&) {
            }
        } else {
            const auto block = std::move(worker->block);
            workers_.erase(worker);
        }
    }
    while (!events_.empty()) {
        const auto block = std::move(events_.begin()->second.block);
        events_.erase(events_.begin());
    }
}

} // namespace harbrook::recording
