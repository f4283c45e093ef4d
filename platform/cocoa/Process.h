#pragma once

#include "platform/Process.h"
#include "platform/cocoa/Frameworks.h"

namespace harbrook::cocoa {

class ProcessInfo final : public harbrook::ProcessInfo {
public:
    Environment environment() override;
    int processIdentifier() override;
    std::filesystem::path loginShell() override { return "/bin/zsh"; }
};

class FileHandle final : public harbrook::FileHandle, public std::enable_shared_from_this<FileHandle> {
public:
    explicit FileHandle(NSFileHandle* handle) : handle_(handle) {}

    std::string availableData() override;
    std::string readDataToEndOfFile() override;
    void writeData(std::string_view data) override;
    void seekToEndOfFile() override;
    void setReadabilityHandler(ReadabilityHandler handler) override;

    [[nodiscard]] NSFileHandle* native() const { return handle_; }

private:
    NSFileHandle* handle_;
};

class Pipe final : public harbrook::Pipe {
public:
    std::shared_ptr<harbrook::FileHandle> fileHandleForReading() override { return reading_; }
    std::shared_ptr<harbrook::FileHandle> fileHandleForWriting() override { return writing_; }

    [[nodiscard]] NSPipe* native() const { return pipe_; }

private:
    NSPipe* pipe_ = [NSPipe pipe];
    std::shared_ptr<FileHandle> reading_ = std::make_shared<FileHandle>(pipe_.fileHandleForReading);
    std::shared_ptr<FileHandle> writing_ = std::make_shared<FileHandle>(pipe_.fileHandleForWriting);
};

class Task final : public harbrook::Task {
public:
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
    // It keeps the native pipes for as long as it lives.
    NSTask* task_ = [[NSTask alloc] init];
};

} // namespace harbrook::cocoa
