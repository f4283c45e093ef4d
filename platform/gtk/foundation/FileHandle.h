#pragma once

#include "platform/Process.h"
#include "platform/gtk/foundation/FileDescriptor.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>

namespace harbrook::gtk {

/// A handle without a descriptor reads as empty and swallows what is written to it.
class FileHandle final : public harbrook::FileHandle, public std::enable_shared_from_this<FileHandle> {
public:
    explicit FileHandle(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

    std::string availableData() override;
    std::string readDataToEndOfFile() override;
    void writeData(std::string_view data) override;
    void seekToEndOfFile() override;
    /// The handler has a thread of its own, which it may block. An empty handler ends the calls, once a call
    /// that is due has been made. When the system has no thread left, the handler is never called.
    void setReadabilityHandler(ReadabilityHandler handler) override;

    /// Blocks until the handler, if there is one, has dealt with all that can be read at this moment; what
    /// comes later is not waited for, nor a handler that is stuck. Any thread but the handler's own.
    void waitUntilHandled();

    /// -1 for none.
    [[nodiscard]] int descriptor() const { return descriptor_.number(); }
    void closeFile() { descriptor_ = FileDescriptor(); }

private:
    /// Reads once, or waits to; none at end of file.
    std::string_view readIntoBuffer();
    void serveReadability() noexcept;
    std::shared_ptr<const ReadabilityHandler> handlerOrStop();
    void waitUntilReadable() const;
    [[nodiscard]] std::size_t readableNow() const;

    FileDescriptor descriptor_;
    std::unique_ptr<char[]> buffer_;
    /// All bytes that have been read. Belongs to whoever reads.
    std::size_t taken_ = 0;
    std::atomic<bool> atEnd_ = false;
    std::mutex mutex_;
    std::shared_ptr<const ReadabilityHandler> handler_;
    bool serving_ = false;
    /// Whether a call of the handler is under way, and what all earlier ones have read.
    bool handling_ = false;
    std::size_t handled_ = 0;
    std::condition_variable callEnded_;
};

class Pipe final : public harbrook::Pipe {
public:
    /// When the system has no descriptor left, both handles are without one.
    Pipe();

    std::shared_ptr<harbrook::FileHandle> fileHandleForReading() override { return reading_; }
    std::shared_ptr<harbrook::FileHandle> fileHandleForWriting() override { return writing_; }

    [[nodiscard]] FileHandle& reading() { return *reading_; }
    [[nodiscard]] FileHandle& writing() { return *writing_; }

private:
    std::shared_ptr<FileHandle> reading_;
    std::shared_ptr<FileHandle> writing_;
};

/// An existing file for writing, from its start; null when it cannot be opened.
[[nodiscard]] std::shared_ptr<FileHandle> openForWriting(const std::filesystem::path& path);
[[nodiscard]] std::shared_ptr<FileHandle> openNullDevice();

} // namespace harbrook::gtk
