// Any bytes that a server can print, in any reads: all of them are in the log, and the port is the first that
// the text so far announces at the end of a read.

#include "server/ServerOutput.h"
#include "server/Text.h"
#include "tests/fuzz/FuzzInput.h"

#include <string>
#include <utility>

namespace {

using namespace harbrook;

class Output final : public FileHandle {
public:
    std::string next;
    std::string written;

    std::string availableData() override { return std::exchange(next, {}); }
    std::string readDataToEndOfFile() override { return availableData(); }
    void writeData(std::string_view data) override { written += data; }
    void seekToEndOfFile() override {}
    void setReadabilityHandler(ReadabilityHandler) override {}
};

class Ready final : public DispatchSemaphore {
public:
    int signals = 0;

    void signal() override { ++signals; }
    bool wait(double) override { return signals > 0; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string all(fuzz::textOf(data, size));
    const auto log = std::make_shared<Output>();
    const auto ready = std::make_shared<Ready>();
    ServerOutput output(log, ready);
    Output pipe;
    std::string text;
    std::int64_t expected = 0;
    for (std::size_t start = 0; start < size;) {
        const auto part = all.substr(start, 1 + data[start] % 32);
        start += part.size();
        if (isValidUTF8(part)) text += part;
        if (expected == 0) expected = AnnouncementParser().append(text).value_or(0);
        pipe.next = part;
        output.handle(pipe);
        fuzz::require(output.announcedPort() == expected);
    }
    fuzz::require(log->written == all);
    fuzz::require(expected == 0 || ready->signals > 0);
    return 0;
}
