#pragma once

#include "platform/Process.h"
#include "platform/recording/World.h"

#include <deque>
#include <memory>
#include <string>

namespace harbrook::recording {

/// The kernel's side of a pipe. What was written in one go is read in one go.
class Stream : public std::enable_shared_from_this<Stream> {
public:
    Stream(WorldPtr world, std::string name) : world_(std::move(world)), name_(std::move(name)) {}

    void write(std::string_view data);
    void addWriter() { ++writers_; }
    /// When the last writer is gone the reader comes to end of file.
    void removeWriter();
    [[nodiscard]] bool isAtEnd() const { return chunks_.empty() && writers_ == 0; }
    /// Whether more was written than the pipe can hold: the writer is stuck until somebody reads.
    [[nodiscard]] bool isOverfull() const;
    void setAfterRead(std::function<void()> block) { afterRead_ = std::move(block); }

    // The reading end.
    [[nodiscard]] std::string read(bool toEnd);
    void setReadabilityHandler(std::shared_ptr<FileHandle> handle, FileHandle::ReadabilityHandler handler);
    void forgetHandler();

private:
    void handlerMayRun();
    void callHandler();

    WorldPtr world_;
    std::string name_;
    std::deque<std::string> chunks_;
    int writers_ = 0;
    std::shared_ptr<FileHandle> handle_;
    FileHandle::ReadabilityHandler handler_;
    bool handlerQueued_ = false;
    std::function<void()> afterRead_;
};

/// Both ends in the shell's hands. The writing end is the shell's own until a child has it.
class Pipe final : public harbrook::Pipe {
public:
    Pipe(WorldPtr world, std::string name);
    ~Pipe() override;

    std::shared_ptr<FileHandle> fileHandleForReading() override { return reading_; }
    std::shared_ptr<FileHandle> fileHandleForWriting() override { return writing_; }

    [[nodiscard]] const std::shared_ptr<Stream>& stream() const { return stream_; }
    /// The child has its copy: the shell closes its own writing end.
    void closeWritingEnd();

private:
    std::shared_ptr<Stream> stream_;
    std::shared_ptr<FileHandle> reading_;
    std::shared_ptr<FileHandle> writing_;
    bool writes_ = true;
};

} // namespace harbrook::recording
