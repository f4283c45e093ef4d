#include "platform/gtk/foundation/Spawn.h"

#include <spawn.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace harbrook::gtk {

namespace {

namespace fs = std::filesystem;

/// What happens in the child between its birth and its program.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    /// 0, or the number of the error.
    [[nodiscard]] int fill(const LaunchPlan& plan) {
        for (std::size_t stream = 0; stream < plan.streams.size(); ++stream) {
            if (plan.streams[stream] < 0) continue;
            const int error =
                posix_spawn_file_actions_adddup2(&actions_, plan.streams[stream], static_cast<int>(stream));
            if (error != 0) return error;
        }
        // Our own descriptors close by themselves; those of libraries may not.
        const int firstToClose = static_cast<int>(plan.streams.size());
        if (const int error = posix_spawn_file_actions_addclosefrom_np(&actions_, firstToClose); error != 0) {
            return error;
        }
        if (plan.currentDirectory.empty()) return 0;
        return posix_spawn_file_actions_addchdir_np(&actions_, plan.currentDirectory.c_str());
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// The shell ignores some signals and its threads block them; a program expects neither.
class Attributes {
public:
    Attributes() {
        posix_spawnattr_init(&attributes_);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// The system has one number for several things that may be missing; tells which it is.
Error describe(int number, const LaunchPlan& plan, const fs::path& executable) {
    const std::string reason = std::generic_category().message(number);
    std::error_code ignored;
    if (!plan.currentDirectory.empty() && !fs::is_directory(plan.currentDirectory, ignored)) {
        return {plan.currentDirectory.string() + ": " + reason};
    }
    if (number == ENOENT && fs::exists(executable, ignored)) {
        return {executable.string() + ": the interpreter or loader that it names is missing"};
    }
    return {executable.string() + ": " + reason};
}

} // namespace

std::variant<pid_t, Error> spawn(const LaunchPlan& plan) {
    // The child changes its directory before it looks for the program.
    std::error_code ignored;
    const fs::path executable = fs::absolute(plan.executable, ignored);

    std::vector<std::string> words{executable.string()};
    words.insert(words.end(), plan.arguments.begin(), plan.arguments.end());
    std::vector<std::string> variables;
    variables.reserve(plan.environment.size());
    for (const auto& [name, value] : plan.environment) {
        variables.emplace_back(name).append("=").append(value);
    }

    FileActions actions;
    const Attributes attributes;
    pid_t identifier = 0;
    int error = actions.fill(plan);
    if (error == 0) {
        error = posix_spawn(
            &identifier, executable.c_str(), actions.get(), attributes.get(), pointersTo(words).data(),
            pointersTo(variables).data());
    }
    if (error != 0) return describe(error, plan, executable);
    return identifier;
}

} // namespace harbrook::gtk
