#pragma once

#include "platform/Process.h"
#include "platform/gtk/foundation/ChildProcess.h"
#include "platform/gtk/foundation/FileHandle.h"

namespace harbrook::gtk {

class Task final : public harbrook::Task {
public:
    /// `environment` is what the child gets when nothing else is set.
    explicit Task(Environment environment) { plan_.environment = std::move(environment); }

    void setExecutableURL(std::filesystem::path executable) override;
    void setArguments(std::vector<std::string> arguments) override;
    void setCurrentDirectoryURL(std::filesystem::path directory) override;
    void setEnvironment(Environment environment) override;
    void setStandardInput(std::shared_ptr<harbrook::Pipe> pipe) override;
    void setStandardOutput(std::shared_ptr<harbrook::Pipe> pipe) override;
    void setStandardError(std::shared_ptr<harbrook::Pipe> pipe) override;
    void setStandardError(std::shared_ptr<harbrook::FileHandle> handle) override;

    std::optional<Error> launchAndReturnError() override;
    void terminate() override;
    void waitUntilExit() override;

private:
    /// False when a stream that was asked for has no descriptor, because the system had none left: the child
    /// would get the shell's own instead.
    bool connectStreams();
    void closeChildsEnds();

    LaunchPlan plan_;
    std::shared_ptr<Pipe> standardInput_;
    std::shared_ptr<Pipe> standardOutput_;
    std::shared_ptr<Pipe> standardErrorPipe_;
    std::shared_ptr<FileHandle> standardErrorHandle_;
    std::shared_ptr<ChildProcess> child_;
};

} // namespace harbrook::gtk
