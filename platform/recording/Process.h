#pragma once

#include "platform/Process.h"
#include "platform/recording/Streams.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace harbrook::recording {

/// What an executable does once it is launched.
struct Program {
    struct Output {
        double after = 0;
        std::string text;
    };

    /// The launch itself fails.
    std::optional<Error> launchError = {};
    /// Printed on standard output, so many seconds after the launch.
    std::vector<Output> output = {};
    std::vector<Output> errorOutput = {};
    /// Without it, the program runs until it is told to end.
    std::optional<double> exitsAfter = {};
    bool ignoresTerminate = false;
    /// How long the program takes to end after the terminate request.
    double terminationTakes = 0;
};

/// A running program, seen from outside the shell.
class Child : public std::enable_shared_from_this<Child> {
public:
    Child(WorldPtr world, Program program) : world_(std::move(world)), program_(std::move(program)) {}

    std::filesystem::path executable;
    std::vector<std::string> arguments;
    std::optional<std::filesystem::path> currentDirectory;
    /// None when the child inherited the shell's.
    std::optional<Environment> environment;

    void print(std::string_view text);
    void printError(std::string_view text);
    /// Ends the program, once nothing that it printed is stuck in a full pipe.
    void exit();
    [[nodiscard]] bool isRunning() const { return running_; }
    [[nodiscard]] int terminateRequests() const { return terminateRequests_; }
    /// Whether its standard input is a pipe that the shell still holds open.
    [[nodiscard]] bool standardInputIsOpen() const { return !standardInput_.expired(); }
    /// Lets go of its ends of the streams without telling anybody.
    void forgetStreams();
    [[nodiscard]] bool hasErrorStream() const { return errorPipe_ || errorHandle_; }

private:
    friend class Task;
    void begin();
    void receiveTerminate();

    WorldPtr world_;
    Program program_;
    bool running_ = true;
    bool exitIsDue_ = false;
    int terminateRequests_ = 0;
    std::weak_ptr<harbrook::Pipe> standardInput_;
    std::shared_ptr<Stream> outputPipe_;
    std::shared_ptr<Stream> errorPipe_;
    std::shared_ptr<FileHandle> errorHandle_;
};

/// The programs there are, by path, and the children that were launched, in order.
struct Processes {
    std::map<std::filesystem::path, Program> programs;
    std::vector<std::shared_ptr<Child>> children;
};

class Task final : public harbrook::Task {
public:
    Task(WorldPtr world, Processes& processes) : world_(std::move(world)), processes_(processes) {}

    void setExecutableURL(std::filesystem::path executable) override;
    void setArguments(std::vector<std::string> arguments) override;
    void setCurrentDirectoryURL(std::filesystem::path directory) override;
    void setEnvironment(Environment environment) override;
    void setStandardInput(std::shared_ptr<harbrook::Pipe> pipe) override;
    void setStandardOutput(std::shared_ptr<harbrook::Pipe> pipe) override;
    void setStandardError(std::shared_ptr<harbrook::Pipe> pipe) override;
    void setStandardError(std::shared_ptr<FileHandle> handle) override;
    std::optional<Error> launchAndReturnError() override;
    void terminate() override;
    void waitUntilExit() override;

    [[nodiscard]] const std::shared_ptr<Child>& child() const { return child_; }

private:
    void requireNotLaunched(const char* operation) const;

    WorldPtr world_;
    Processes& processes_;
    std::filesystem::path executable_;
    std::vector<std::string> arguments_;
    std::optional<std::filesystem::path> directory_;
    std::optional<Environment> environment_;
    std::shared_ptr<harbrook::Pipe> input_;
    std::shared_ptr<harbrook::Pipe> output_;
    std::shared_ptr<harbrook::Pipe> errorPipe_;
    std::shared_ptr<FileHandle> errorHandle_;
    std::shared_ptr<Child> child_;
};

class ProcessInfo final : public harbrook::ProcessInfo {
public:
    Environment environment() override { return environment_; }
    int processIdentifier() override { return 4242; }
    std::filesystem::path loginShell() override { return loginShell_; }

    void setEnvironment(Environment environment) { environment_ = std::move(environment); }
    void setVariable(const std::string& name, std::string value) { environment_[name] = std::move(value); }
    void setLoginShell(std::filesystem::path shell) { loginShell_ = std::move(shell); }

private:
    Environment environment_{{"HOME", "/home/ada"}, {"PATH", "/usr/bin:/bin"}};
    std::filesystem::path loginShell_ = "/bin/zsh";
};

} // namespace harbrook::recording
