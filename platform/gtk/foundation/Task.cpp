#include "platform/gtk/foundation/Task.h"

#include <cerrno>
#include <system_error>

namespace harbrook::gtk {

namespace {

/// The seam hands around what this platform made, so the cast holds; anything else is a programming error.
template <typename Native, typename Seam>
std::shared_ptr<Native> native(const std::shared_ptr<Seam>& object) {
    return std::static_pointer_cast<Native>(object);
}

} // namespace

void Task::setExecutableURL(std::filesystem::path executable) {
    plan_.executable = std::move(executable);
}

void Task::setArguments(std::vector<std::string> arguments) {
    plan_.arguments = std::move(arguments);
}

void Task::setCurrentDirectoryURL(std::filesystem::path directory) {
    plan_.currentDirectory = std::move(directory);
}

void Task::setEnvironment(Environment environment) {
    plan_.environment = std::move(environment);
}

void Task::setStandardInput(std::shared_ptr<harbrook::Pipe> pipe) {
    standardInput_ = native<Pipe>(pipe);
}

void Task::setStandardOutput(std::shared_ptr<harbrook::Pipe> pipe) {
    standardOutput_ = native<Pipe>(pipe);
}

void Task::setStandardError(std::shared_ptr<harbrook::Pipe> pipe) {
    standardErrorPipe_ = native<Pipe>(pipe);
    standardErrorHandle_ = nullptr;
}

void Task::setStandardError(std::shared_ptr<harbrook::FileHandle> handle) {
    standardErrorHandle_ = native<FileHandle>(handle);
    standardErrorPipe_ = nullptr;
}

std::optional<Error> Task::launchAndReturnError() {
    if (child_) return Error{"The program was started before."};
    if (!connectStreams()) return Error{std::generic_category().message(EMFILE)};

    auto outcome = ChildProcess::launch(plan_);
    if (auto* error = std::get_if<Error>(&outcome)) return std::move(*error);
    child_ = std::get<std::shared_ptr<ChildProcess>>(std::move(outcome));
    closeChildsEnds();
    return std::nullopt;
}

bool Task::connectStreams() {
    const auto connect = [this](std::size_t stream, int descriptor) {
        plan_.streams[stream] = descriptor;
        return descriptor >= 0;
    };
    return (!standardInput_ || connect(0, standardInput_->reading().descriptor())) &&
           (!standardOutput_ || connect(1, standardOutput_->writing().descriptor())) &&
           (!standardErrorPipe_ || connect(2, standardErrorPipe_->writing().descriptor())) &&
           (!standardErrorHandle_ || connect(2, standardErrorHandle_->descriptor()));
}

void Task::closeChildsEnds() {
    if (standardInput_) standardInput_->reading().closeFile();
    if (standardOutput_) standardOutput_->writing().closeFile();
    if (standardErrorPipe_) standardErrorPipe_->writing().closeFile();
}

void Task::terminate() {
    if (child_) child_->terminate();
}

void Task::waitUntilExit() {
    if (!child_) return;
    child_->waitUntilExit();
    // The last that the child printed should not be lost with a shell that ends now.
    if (standardOutput_) standardOutput_->reading().waitUntilHandled();
    if (standardErrorPipe_) standardErrorPipe_->reading().waitUntilHandled();
}

} // namespace harbrook::gtk
