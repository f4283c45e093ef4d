#pragma once

#include "platform/Platform.h"
#include "server/AnnouncementParser.h"
#include "server/OutputText.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace harbrook {

/// Takes what the server prints: copies it into the log, keeps its text, and looks for the announcement.
/// `handle` runs on a queue of the platform's, one call at a time; the launcher waits on another thread.
class ServerOutput {
public:
    /// `log` may be null. `ready` is signalled each time a port is parsed while none but 0 is known.
    ServerOutput(std::shared_ptr<FileHandle> log, std::shared_ptr<DispatchSemaphore> ready)
        : log_(std::move(log)), ready_(std::move(ready)) {}

    /// The readability handler of the server's standard output.
    void handle(FileHandle& output);

    /// The announced port, or 0. Any thread.
    [[nodiscard]] std::int64_t announcedPort() const {
        return announcedPort_.load(std::memory_order_acquire);
    }

    /// All that was printed and could be decoded, from the first word on. On the handler's queue.
    [[nodiscard]] std::string text() const { return text_.string(); }

private:
    std::shared_ptr<FileHandle> log_;
    std::shared_ptr<DispatchSemaphore> ready_;
    OutputText text_;
    AnnouncementParser parser_;
    std::atomic<std::int64_t> announcedPort_ = 0;
};

} // namespace harbrook
