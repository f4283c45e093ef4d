#include "platform/recording/Process.h"

#include "platform/recording/Format.h"

namespace harbrook::recording {

namespace {

std::shared_ptr<Stream> streamOf(const std::shared_ptr<harbrook::Pipe>& pipe) {
    if (!pipe) return nullptr;
    const auto own = std::dynamic_pointer_cast<Pipe>(pipe);
    refuseIf(!own, "a pipe of another platform");
    return own->stream();
}

void closeWritingEnd(const std::shared_ptr<harbrook::Pipe>& pipe) {
    if (const auto own = std::dynamic_pointer_cast<Pipe>(pipe)) own->closeWritingEnd();
}

} // namespace

void Child::begin() {
    for (const auto& output : program_.output) {
        world_->scheduler.addOutsideEvent(
            output.after, [self = shared_from_this(), text = output.text] { self->print(text); });
    }
    for (const auto& output : program_.errorOutput) {
        world_->scheduler.addOutsideEvent(
            output.after, [self = shared_from_this(), text = output.text] { self->printError(text); });
    }
    if (program_.exitsAfter) {
        world_->scheduler.addOutsideEvent(
            *program_.exitsAfter, [self = shared_from_this()] { self->exit(); });
    }
}

void Child::print(std::string_view text) {
    if (running_ && outputPipe_) outputPipe_->write(text);
}

void Child::printError(std::string_view text) {
    if (!running_) return;
    if (errorPipe_) errorPipe_->write(text);
    if (errorHandle_) errorHandle_->writeData(text);
}

void Child::exit() {
    const auto overfull = [](const auto& pipe) { return pipe && pipe->isOverfull(); };
    exitIsDue_ = true;
    if (overfull(outputPipe_) || overfull(errorPipe_)) return;
    if (!std::exchange(running_, false)) return;
    if (outputPipe_) outputPipe_->removeWriter();
    if (errorPipe_) errorPipe_->removeWriter();
    errorHandle_ = {};
}

void Child::forgetStreams() {
    outputPipe_ = {};
    errorPipe_ = {};
    errorHandle_ = {};
}

void Child::receiveTerminate() {
    ++terminateRequests_;
    if (program_.ignoresTerminate) return;
    world_->scheduler.addOutsideEvent(
        program_.terminationTakes, [self = shared_from_this()] { self->exit(); });
}

void Task::requireNotLaunched(const char* operation) const {
    refuseIf(child_ != nullptr, std::string("task ") + operation + " after its launch");
}

void Task::setExecutableURL(std::filesystem::path executable) {
    requireNotLaunched("setExecutableURL");
    executable_ = std::move(executable);
}

void Task::setArguments(std::vector<std::string> arguments) {
    requireNotLaunched("setArguments");
    arguments_ = std::move(arguments);
}

void Task::setCurrentDirectoryURL(std::filesystem::path directory) {
    requireNotLaunched("setCurrentDirectoryURL");
    directory_ = std::move(directory);
}

void Task::setEnvironment(Environment environment) {
    requireNotLaunched("setEnvironment");
    environment_ = std::move(environment);
}

void Task::setStandardInput(std::shared_ptr<harbrook::Pipe> pipe) {
    requireNotLaunched("setStandardInput");
    input_ = std::move(pipe);
}

void Task::setStandardOutput(std::shared_ptr<harbrook::Pipe> pipe) {
    requireNotLaunched("setStandardOutput");
    output_ = std::move(pipe);
}

void Task::setStandardError(std::shared_ptr<harbrook::Pipe> pipe) {
    requireNotLaunched("setStandardError");
    errorPipe_ = std::move(pipe);
    errorHandle_ = {};
}

void Task::setStandardError(std::shared_ptr<FileHandle> handle) {
    requireNotLaunched("setStandardError");
    refuseIf(!handle, "task setStandardError without a handle");
    errorHandle_ = std::move(handle);
    errorPipe_ = {};
}

std::optional<Error> Task::launchAndReturnError() {
    requireNotLaunched("launch");
    std::string line = "task launch: " + executable_.string();
    for (const auto& argument : arguments_)
        line += " " + inQuotes(argument);
    world_->note(std::move(line));
    const auto program = processes_.programs.find(executable_);
    if (program == processes_.programs.end()) return Error{"The file doesn’t exist."};
    if (program->second.launchError) return program->second.launchError;

    child_ = std::make_shared<Child>(world_, program->second);
    child_->executable = executable_;
    child_->arguments = arguments_;
    child_->currentDirectory = directory_;
    child_->environment = environment_;
    child_->standardInput_ = input_;
    child_->outputPipe_ = streamOf(output_);
    child_->errorPipe_ = streamOf(errorPipe_);
    child_->errorHandle_ = errorHandle_;
    for (const auto& pipe : {child_->outputPipe_, child_->errorPipe_}) {
        if (!pipe) continue;
        pipe->addWriter();
        pipe->setAfterRead([weak = std::weak_ptr(child_)] {
            if (const auto child = weak.lock(); child && child->exitIsDue_) child->exit();
        });
    }
    closeWritingEnd(output_);
    closeWritingEnd(errorPipe_);
    processes_.children.push_back(child_);
    child_->begin();
    return std::nullopt;
}

void Task::terminate() {
    world_->note("task terminate");
    refuseIf(!child_, "task terminate before its launch");
    if (child_->isRunning()) child_->receiveTerminate();
}

void Task::waitUntilExit() {
    world_->note("task waitUntilExit");
    refuseIf(!child_, "task waitUntilExit before its launch");
    const auto exited = [child = child_] { return !child->isRunning(); };
    if (world_->scheduler.isMainThread()) {
        world_->scheduler.blockMain(exited, executable_.string() + " to exit");
    } else {
        world_->scheduler.blockWorker(exited);
    }
}

} // namespace harbrook::recording
