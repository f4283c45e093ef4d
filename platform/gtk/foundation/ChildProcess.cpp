#include "platform/gtk/foundation/ChildProcess.h"

#include "platform/gtk/foundation/Spawn.h"
#include "platform/gtk/foundation/Thread.h"

#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace harbrook::gtk {

namespace {

/// All children that may still run. Never destroyed: workers may start one while the process ends.
struct Children {
    std::mutex mutex;
    std::vector<std::weak_ptr<ChildProcess>> list;
};

Children& children() {
    static Children& all = *std::make_unique<Children>().release();
    return all;
}

std::vector<std::shared_ptr<ChildProcess>> remembered() {
    auto& all = children();
    const std::lock_guard lock(all.mutex);
    std::vector<std::shared_ptr<ChildProcess>> alive;
    for (const auto& one : all.list) {
        if (auto child = one.lock()) alive.push_back(std::move(child));
    }
    return alive;
}

void remember(const std::shared_ptr<ChildProcess>& child) {
    auto& all = children();
    const std::lock_guard lock(all.mutex);
    std::erase_if(all.list, [](const auto& one) { return one.expired(); });
    all.list.push_back(child);
}

} // namespace

void ChildProcess::terminateAll() {
    for (const auto& child : remembered())
        child->terminate();
}

void ChildProcess::killAll() {
    for (const auto& child : remembered())
        child->send({SIGKILL});
}

std::variant<std::shared_ptr<ChildProcess>, Error> ChildProcess::launch(const LaunchPlan& plan) {
    auto child = std::make_shared<ChildProcess>();
    // The thread comes first: once the child runs, nothing may fail any more.
    try {
        startThread("child watcher", [child] { child->reapWhenExited(); });
    } catch (const std::system_error& error) {
        return Error{error.code().message()};
    }
    auto outcome = spawn(plan);
    if (auto* error = std::get_if<Error>(&outcome)) {
        child->changeState(State::over, 0);
        return std::move(*error);
    }
    child->changeState(State::running, std::get<pid_t>(outcome));
    remember(child);
    return child;
}

void ChildProcess::changeState(State state, pid_t identifier) {
    const std::lock_guard lock(mutex_);
    state_ = state;
    identifier_ = identifier;
    stateChanged_.notify_all();
}

void ChildProcess::reapWhenExited() noexcept {
    std::unique_lock lock(mutex_);
    stateChanged_.wait(lock, [this] { return state_ != State::starting; });
    if (state_ == State::over) return;

    // The exited child stays a zombie until the lock is held, so that `terminate` never signals another
    // process that was given the same number.
    lock.unlock();
    siginfo_t status{};
    const auto number = static_cast<id_t>(identifier_);
    while (waitid(P_PID, number, &status, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    lock.lock();
    while (waitid(P_PID, number, &status, WEXITED) != 0 && errno == EINTR) {
    }
    state_ = State::over;
    stateChanged_.notify_all();
}

void ChildProcess::send(std::initializer_list<int> signals) {
    const std::lock_guard lock(mutex_);
    if (state_ != State::running) return;
    for (const int number : signals)
        kill(identifier_, number);
}

void ChildProcess::terminate() {
    // One that is stopped takes the request only when it goes on. To any other the second says nothing.
    send({SIGTERM, SIGCONT});
}

void ChildProcess::waitUntilExit() {
    std::unique_lock lock(mutex_);
    stateChanged_.wait(lock, [this] { return state_ == State::over; });
}

} // namespace harbrook::gtk
