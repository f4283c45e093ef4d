#include "platform/Descriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <utility>

namespace harbrook {

namespace {

class Descriptors : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(pipe(ends_.data()), 0); }
    void TearDown() override {
        close(ends_[0]);
        closeWriting();
    }

    [[nodiscard]] int reading() const { return ends_[0]; }
    void writeText(const std::string& text) const {
        ASSERT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void closeWriting() { close(std::exchange(ends_[1], -1)); }

private:
    std::array<int, 2> ends_{};
};

TEST_F(Descriptors, what_is_there_is_read_without_waiting_for_more) {
    writeText("some words");
    EXPECT_EQ(readAvailable(reading()), "some words");
    writeText(std::string("a zero\0here", 11));
    EXPECT_EQ(readAvailable(reading()), std::string("a zero\0here", 11));
}

TEST_F(Descriptors, end_of_file_is_empty_as_often_as_it_is_asked_for) {
    writeText("last");
    closeWriting();
    EXPECT_EQ(readAvailable(reading()), "last");
    EXPECT_EQ(readAvailable(reading()), "");
    EXPECT_EQ(readAvailable(reading()), "");
}

TEST_F(Descriptors, what_cannot_be_read_counts_as_end_of_file) {
    const int directory = open("/", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(directory, 0);
    EXPECT_EQ(readAvailable(directory), "");
    close(directory);
    EXPECT_EQ(readAvailable(-1), "");
}

/// How often the signal of the test below was handled.
std::atomic<int> interruptions = 0;

TEST_F(Descriptors, a_signal_does_not_end_the_reading) {
    struct sigaction interrupting = {};
    interrupting.sa_handler = [](int) { ++interruptions; };
    struct sigaction usual = {};
    ASSERT_EQ(sigaction(SIGUSR1, &interrupting, &usual), 0);
    std::string data;
    std::atomic<bool> ended = false;
    std::thread reader([&] {
        data = readAvailable(reading());
        ended = true;
    });
    // It may not have come to read yet when the first ones arrive.
    while (interruptions < 100 && !ended) {
        const int seen = interruptions;
        pthread_kill(reader.native_handle(), SIGUSR1);
        while (interruptions == seen && !ended)
            std::this_thread::yield();
    }
    writeText("after all");
    reader.join();
    EXPECT_EQ(data, "after all");
    sigaction(SIGUSR1, &usual, nullptr);
}

} // namespace

} // namespace harbrook
