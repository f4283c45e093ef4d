#include "platform/gtk/foundation/ChildProcess.h"

#include "platform/gtk/foundation/Spawn.h"
#include "platform/gtk/foundation/Thread.h"

#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace harbrook::gtk {

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

void ChildProcess::terminate() {
    const std::lock_guard lock(mutex_);
    if (state_ != State::running) return;
    kill(identifier_, SIGTERM);
    // One that is stopped takes the request only when it goes on. To any other this says nothing.
    kill(identifier_, SIGCONT);
}

void ChildProcess::waitUntilExit() {
    std::unique_lock lock(mutex_);
    stateChanged_.wait(lock, [this] { return state_ == State::over; });
}

} // namespace harbrook::gtk
