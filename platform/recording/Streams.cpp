#include "platform/recording/Streams.h"

#include <numeric>

namespace harbrook::recording {

namespace {

/// What a pipe holds before its writer is stuck, as on Linux and macOS.
constexpr std::size_t pipeCapacity = 65'536;

class ReadingEnd final : public FileHandle, public std::enable_shared_from_this<ReadingEnd> {
public:
    explicit ReadingEnd(std::shared_ptr<Stream> stream) : stream_(std::move(stream)) {}

    std::string availableData() override { return stream_->read(false); }
    std::string readDataToEndOfFile() override { return stream_->read(true); }
    void writeData(std::string_view) override { throw Refused("the reading end of a pipe was written to"); }
    void seekToEndOfFile() override { throw Refused("a pipe has no places to seek"); }
    void setReadabilityHandler(ReadabilityHandler handler) override {
        stream_->setReadabilityHandler(shared_from_this(), std::move(handler));
    }

private:
    std::shared_ptr<Stream> stream_;
};

class WritingEnd final : public FileHandle {
public:
    explicit WritingEnd(std::shared_ptr<Stream> stream) : stream_(std::move(stream)) {}

    std::string availableData() override { throw Refused("the writing end of a pipe was read"); }
    std::string readDataToEndOfFile() override { throw Refused("the writing end of a pipe was read"); }
    void writeData(std::string_view data) override { stream_->write(data); }
    void seekToEndOfFile() override { throw Refused("a pipe has no places to seek"); }
    void setReadabilityHandler(ReadabilityHandler) override {
        throw Refused("the writing end of a pipe was watched for reading");
    }

private:
    std::shared_ptr<Stream> stream_;
};

} // namespace

void Stream::write(std::string_view data) {
    if (data.empty()) return;
    chunks_.emplace_back(data);
    handlerMayRun();
}

void Stream::removeWriter() {
    if (--writers_ == 0) handlerMayRun();
}

bool Stream::isOverfull() const {
    const auto add = [](std::size_t size, const std::string& chunk) { return size + chunk.size(); };
    return std::accumulate(chunks_.begin(), chunks_.end(), std::size_t{0}, add) > pipeCapacity;
}

std::string Stream::read(bool toEnd) {
    const auto ready = [this] { return writers_ == 0 || !chunks_.empty(); };
    if (!ready()) world_->scheduler.blockWorker(ready);
    std::string data;
    while (true) {
        while (!chunks_.empty()) {
            data += chunks_.front();
            chunks_.pop_front();
            if (!toEnd) break;
        }
        if (afterRead_) afterRead_();
        if (!toEnd || isAtEnd()) return data;
        if (!world_->scheduler.blockWorker([this] { return !chunks_.empty() || writers_ == 0; })) return data;
    }
}

void Stream::setReadabilityHandler(
    std::shared_ptr<FileHandle> handle, FileHandle::ReadabilityHandler handler) {
    world_->note("pipe setReadabilityHandler");
    handle_ = std::move(handle);
    handler_ = std::move(handler);
    handlerMayRun();
}

void Stream::forgetHandler() {
    handler_ = {};
    handle_ = {};
}

void Stream::handlerMayRun() {
    if (!handler_ || handlerQueued_ || (chunks_.empty() && writers_ > 0)) return;
    handlerQueued_ = true;
    world_->scheduler.addWorker("output of " + name_, [self = shared_from_this()] { self->callHandler(); });
}

void Stream::callHandler() {
    const bool ended = isAtEnd();
    // The handler may take itself away.
    const auto handler = handler_;
    if (handler) handler(*handle_);
    // A handle at its end stays readable: a platform may well say so more than once.
    if (ended && handler_) handler(*handle_);
    handlerQueued_ = false;
    if (ended) {
        forgetHandler();
    } else {
        handlerMayRun();
    }
}

Pipe::Pipe(WorldPtr world, std::string name)
    : stream_(std::make_shared<Stream>(world, std::move(name))),
      reading_(std::make_shared<ReadingEnd>(stream_)),
      writing_(std::make_shared<WritingEnd>(stream_)) {
    stream_->addWriter();
    world->atEnd.emplace_back([weak = std::weak_ptr(stream_)] {
        if (const auto stream = weak.lock()) stream->forgetHandler();
    });
}

Pipe::~Pipe() {
    closeWritingEnd();
}

void Pipe::closeWritingEnd() {
    if (std::exchange(writes_, false)) stream_->removeWriter();
}

} // namespace harbrook::recording
