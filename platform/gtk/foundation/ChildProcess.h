#pragma once

#include "platform/Error.h"
#include "platform/Process.h"

#include <sys/types.h>

#include <array>
#include <condition_variable>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace harbrook::gtk {

/// What a child is started with.
struct LaunchPlan {
    std::filesystem::path executable;
    std::vector<std::string> arguments;
    Environment environment;
    /// Empty for the shell's own.
    std::filesystem::path currentDirectory;
    /// The descriptors that become standard input, output and error; -1 leaves the shell's own.
    std::array<int, 3> streams{-1, -1, -1};
};

/// A child that runs or has run. It is reaped as soon as it exits, on a thread of its own, whether or not
/// anybody waits for it or keeps this object.
class ChildProcess {
public:
    /// Any thread.
    [[nodiscard]] static std::variant<std::shared_ptr<ChildProcess>, Error> launch(const LaunchPlan& plan);

    /// Sends SIGTERM, and has a stopped child go on so that it takes it; unless the child has exited. Any
    /// thread.
    void terminate();
    /// Blocks until the child has exited and been reaped. Any thread.
    void waitUntilExit();

    /// Has every child that still runs terminate, for a process that is about to end: nobody would wait for
    /// them any more. Any thread.
    static void terminateAll();
    /// Kills every child that still runs. Any thread.
    static void killAll();

private:
    enum class State { starting, running, over };

    void send(std::initializer_list<int> signals);
    void changeState(State state, pid_t identifier);
    void reapWhenExited() noexcept;

    std::mutex mutex_;
    std::condition_variable stateChanged_;
    State state_ = State::starting;
    pid_t identifier_ = 0;
};

} // namespace harbrook::gtk
