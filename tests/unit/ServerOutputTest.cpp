#include "server/ServerOutput.h"

#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

class CountingSemaphore final : public DispatchSemaphore {
public:
    void signal() override { ++signals; }
    bool wait(double) override { return false; }

    int signals = 0;
};

/// A stream that gives what the test puts into it, and then its end.
class Printed final : public FileHandle {
public:
    std::string availableData() override { return std::exchange(next, {}); }
    std::string readDataToEndOfFile() override { return availableData(); }
    void writeData(std::string_view) override {}
    void seekToEndOfFile() override {}
    void setReadabilityHandler(ReadabilityHandler) override {}

    std::string next;
};

class ServerOutputHandler : public testing::Test {
protected:
    void print(std::string text) {
        stream.next = std::move(text);
        output.handle(stream);
    }

    std::shared_ptr<CountingSemaphore> ready = std::make_shared<CountingSemaphore>();
    Printed stream;
    ServerOutput output{nullptr, ready};
};

TEST_F(ServerOutputHandler, takes_a_port_once_and_signals_once) {
    print("HARBROOK_PORT 475");
    EXPECT_EQ(output.announcedPort(), 475);
    EXPECT_EQ(ready->signals, 1);
    print("46\n");
    print("HARBROOK_PORT 3000\n");
    EXPECT_EQ(output.announcedPort(), 475);
    EXPECT_EQ(ready->signals, 1);
}

TEST_F(ServerOutputHandler, keeps_all_of_the_text_after_the_port_is_known_too) {
    print("one HARBROOK_PORT 475");
    print("46 two\n");
    print("half a \xC3");
    print("three\n");
    EXPECT_EQ(output.text(), "one HARBROOK_PORT 47546 two\nthree\n");
}

TEST_F(ServerOutputHandler, signals_nothing_until_there_is_a_port) {
    print("starting\n");
    print("HARBROOK_PORT ");
    EXPECT_EQ(ready->signals, 0);
    print("3000");
    EXPECT_EQ(ready->signals, 1);
}

TEST_F(ServerOutputHandler, takes_port_0_anew_with_every_piece) {
    print("HARBROOK_PORT 0\n");
    EXPECT_EQ(output.announcedPort(), 0);
    EXPECT_EQ(ready->signals, 1);
    print("more\n");
    print("\xFF");
    EXPECT_EQ(ready->signals, 3) << "a piece that does not decode is a piece too";
    EXPECT_EQ(output.announcedPort(), 0);
}

TEST_F(ServerOutputHandler, does_nothing_at_the_end_of_the_stream_however_often_it_is_told) {
    print("HARBROOK_PORT 0\n");
    print("");
    print("");
    EXPECT_EQ(ready->signals, 1);
}

} // namespace
} // namespace harbrook::tests
