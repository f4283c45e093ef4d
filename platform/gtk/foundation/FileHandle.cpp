#include "platform/gtk/foundation/FileHandle.h"

#include "platform/gtk/foundation/Clock.h"
#include "platform/gtk/foundation/Thread.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <array>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace harbrook::gtk {

namespace {

/// What one read takes at most: as much as `cat` takes, so that copying a flood of output costs no more.
constexpr std::size_t readSize = std::size_t{128} * 1024;

/// What a watched pipe holds at most; an unprivileged user is allowed that much. The writer then runs on
/// while the handler is at work.
constexpr int watchedPipeSize = 1024 * 1024;

/// A handler that takes longer than this for what a pipe holds is stuck, on a file system that hangs say.
constexpr double handlerPatience = 2;

} // namespace

std::string_view FileHandle::readIntoBuffer() {
    if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(readSize);
    for (;;) {
        const auto count =
            retryWhenInterrupted([this] { return read(descriptor(), buffer_.get(), readSize); });
        if (count > 0) {
            taken_ += static_cast<std::size_t>(count);
            return {buffer_.get(), static_cast<std::size_t>(count)};
        }
        if (count < 0 && errno == EAGAIN) {
            waitUntilReadable();
            continue;
        }
        atEnd_ = true;
        return {};
    }
}

std::string FileHandle::availableData() {
    return std::string(readIntoBuffer());
}

std::string FileHandle::readDataToEndOfFile() {
    std::string data;
    for (;;) {
        const auto part = readIntoBuffer();
        if (part.empty()) return data;
        data += part;
    }
}

void FileHandle::writeData(std::string_view data) {
    static_cast<void>(writeAll(descriptor(), data));
}

void FileHandle::seekToEndOfFile() {
    lseek(descriptor(), 0, SEEK_END);
}

void FileHandle::setReadabilityHandler(ReadabilityHandler handler) {
    const std::lock_guard lock(mutex_);
    if (!handler) {
        handler_ = nullptr;
        return;
    }
    handler_ = std::make_shared<const ReadabilityHandler>(std::move(handler));
    if (std::exchange(serving_, true)) return;
    fcntl(descriptor(), F_SETPIPE_SZ, watchedPipeSize);
    try {
        startThread("pipe reader", [self = shared_from_this()] { self->serveReadability(); });
    } catch (const std::system_error&) {
        handler_ = nullptr;
        serving_ = false;
    }
}

void FileHandle::serveReadability() noexcept {
    for (;;) {
        waitUntilReadable();
        const auto handler = handlerOrStop();
        if (!handler) return;
        (*handler)(*this);
        const std::lock_guard lock(mutex_);
        handling_ = false;
        handled_ = taken_;
        if (atEnd_) {
            handler_ = nullptr;
            serving_ = false;
        }
        callEnded_.notify_all();
        if (atEnd_) return;
    }
}

std::shared_ptr<const FileHandle::ReadabilityHandler> FileHandle::handlerOrStop() {
    const std::lock_guard lock(mutex_);
    serving_ = handling_ = handler_ != nullptr;
    if (!serving_) callEnded_.notify_all();
    return handler_;
}

void FileHandle::waitUntilHandled() {
    std::unique_lock lock(mutex_);
    // What a call that is under way has read may have come out of the pipe before.
    const std::size_t enough = handled_ + readableNow() + readSize;
    callEnded_.wait_until(lock, momentAfter(handlerPatience), [&] {
        return !serving_ || handled_ >= enough || (!handling_ && readableNow() == 0);
    });
}

std::size_t FileHandle::readableNow() const {
    int count = 0;
    return ioctl(descriptor(), FIONREAD, &count) == 0 ? static_cast<std::size_t>(count) : 0;
}

void FileHandle::waitUntilReadable() const {
    // Reading will tell; a poll of nothing would wait for ever.
    if (descriptor() < 0) return;
    pollfd readable{descriptor(), POLLIN, 0};
    retryWhenInterrupted([&readable] { return poll(&readable, 1, -1); });
}

Pipe::Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) ends = {-1, -1};
    reading_ = std::make_shared<FileHandle>(FileDescriptor(ends[0]));
    writing_ = std::make_shared<FileHandle>(FileDescriptor(ends[1]));
}

std::shared_ptr<FileHandle> openForWriting(const std::filesystem::path& path) {
    // A FIFO that nobody reads is an error, as all that cannot be written to; without this it would be waited
    // for.
    FileDescriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (file) fcntl(file.number(), F_SETFL, 0);
    return file ? std::make_shared<FileHandle>(std::move(file)) : nullptr;
}

std::shared_ptr<FileHandle> openNullDevice() {
    return std::make_shared<FileHandle>(FileDescriptor(open("/dev/null", O_RDWR | O_CLOEXEC)));
}

} // namespace harbrook::gtk
