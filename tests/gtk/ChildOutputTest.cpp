#include "tests/gtk/ChildTest.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

namespace harbrook::tests {

namespace {

using ChildOutput = ChildTest;

TEST_F(ChildOutput, many_at_once_each_have_their_own_streams) {
    constexpr int workers = 6;
    constexpr int rounds = 10;
    std::atomic<int> right = 0;
    std::atomic<int> ended = 0;
    for (int worker = 0; worker < workers; ++worker) {
        gtkPlatform().globalQueue().async([&, worker] {
            for (int round = 0; round < rounds; ++round) {
                const auto word = std::to_string(worker) + "." + std::to_string(round);
                if (outputOf(shell("cat </dev/null; echo " + word)) == word + "\n") ++right;
            }
            ++ended;
        });
    }
    ASSERT_TRUE(runMainLoopUntil([&] { return ended == workers; }, 120));
    EXPECT_EQ(right, workers * rounds);
}

TEST_F(ChildOutput, a_flood_of_output_arrives_whole_and_in_order) {
    constexpr std::size_t size = 100'000'000;
    const auto task = shell("yes 'abcdefghi' | head -c " + std::to_string(size));
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardOutput(pipe);
    const auto path = directory() / "log";
    ASSERT_TRUE(gtkPlatform().fileManager().createFileAtPath(path));
    const auto log = gtkPlatform().fileHandleForWritingToURL(path);
    std::atomic<std::size_t> received = 0;
    std::atomic<bool> over = false;
    std::atomic<bool> inOrder = true;
    pipe->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
        const auto data = handle.availableData();
        const std::size_t start = received;
        if (!data.empty() && data.front() != "abcdefghi\n"[start % 10]) inOrder = false;
        log->writeData(data);
        received = start + data.size();
        if (data.empty()) over = true;
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    ASSERT_TRUE(runMainLoopUntil([&] { return over.load(); }, 120));
    task->waitUntilExit();
    EXPECT_EQ(received, size);
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(std::filesystem::file_size(path), size);
}

TEST_F(ChildOutput, a_handler_meets_end_of_file_once) {
    const auto pipe = gtkPlatform().makePipe();
    const auto task = shell("echo words");
    task->setStandardOutput(pipe);
    std::atomic<int> emptyReads = 0;
    pipe->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
        if (handle.availableData().empty()) ++emptyReads;
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    ASSERT_TRUE(runMainLoopUntil([&] { return emptyReads > 0; }));
    static_cast<void>(runMainLoopUntil([] { return false; }, 0.05));
    EXPECT_EQ(emptyReads, 1);
    task->waitUntilExit();
}

TEST_F(ChildOutput, has_exited_only_when_the_handler_has_dealt_with_its_last_words) {
    constexpr std::size_t size = 1'000'000;
    const auto task = shell("head -c " + std::to_string(size) + " /dev/zero");
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardOutput(pipe);
    // It hears of the end of the output only after that of the child, and of this test.
    const auto received = std::make_shared<std::atomic<std::size_t>>(0);
    pipe->fileHandleForReading()->setReadabilityHandler([received](FileHandle& handle) {
        const auto data = handle.availableData();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        *received += data.size();
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    task->waitUntilExit();
    EXPECT_EQ(*received, size);
}

TEST_F(ChildOutput, does_not_keep_others_waiting_for_a_handler_that_is_stuck) {
    const auto task = shell("echo one");
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardOutput(pipe);
    const auto called = gtkPlatform().makeSemaphore(0);
    const auto released = gtkPlatform().makeSemaphore(0);
    std::atomic<bool> over = false;
    pipe->fileHandleForReading()->setReadabilityHandler([=, &over](FileHandle& handle) {
        called->signal();
        EXPECT_TRUE(released->wait(30));
        if (handle.availableData().empty()) over = true;
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    ASSERT_TRUE(called->wait(10));
    task->waitUntilExit();
    EXPECT_FALSE(over);
    released->signal();
    released->signal();
    EXPECT_TRUE(runMainLoopUntil([&] { return over.load(); }));
}

TEST_F(ChildOutput, does_not_keep_others_waiting_for_what_those_print_that_it_leaves_behind) {
    const auto number = directory() / "number";
    const auto task = shell("yes & echo $! >" + number.string());
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardOutput(pipe);
    std::atomic<bool> over = false;
    pipe->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
        if (handle.availableData().empty()) over = true;
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    task->waitUntilExit();
    EXPECT_FALSE(over);
    pid_t leftBehind = 0;
    std::ifstream(number) >> leftBehind;
    ASSERT_GT(leftBehind, 0);
    EXPECT_EQ(kill(leftBehind, SIGKILL), 0);
    EXPECT_TRUE(runMainLoopUntil([&] { return over.load(); }));
}

TEST_F(ChildOutput, a_handler_may_be_taken_away) {
    const auto task = shell("echo one; read line; echo two");
    const auto input = gtkPlatform().makePipe();
    const auto output = gtkPlatform().makePipe();
    task->setStandardInput(input);
    task->setStandardOutput(output);
    const auto reading = output->fileHandleForReading();
    Shared<std::string> text;
    reading->setReadabilityHandler([&](FileHandle& handle) {
        const auto data = handle.availableData();
        handle.setReadabilityHandler({});
        text.change([&](std::string& all) { all += data; });
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    ASSERT_TRUE(runMainLoopUntil([&] { return text.get() == "one\n"; }));
    input->fileHandleForWriting()->writeData("go on\n");
    task->waitUntilExit();
    EXPECT_EQ(reading->readDataToEndOfFile(), "two\n");
    EXPECT_EQ(text.get(), "one\n");
}

TEST_F(ChildOutput, a_full_disk_is_borne_in_silence) {
    const auto full = gtkPlatform().fileHandleForWritingToURL("/dev/full");
    ASSERT_NE(full, nullptr);
    full->writeData("lost");
}

TEST(ProcessEnd, does_not_wait_for_workers_and_survives_them) {
    EXPECT_EXIT(
        {
            auto& platform = gtkPlatform();
            const auto never = platform.makeSemaphore(0);
            for (int i = 0; i < 8; ++i) {
                platform.globalQueue().async([&platform, never] {
                    while (!never->wait(0.0001))
                        platform.mainQueue().async([] {});
                });
            }
            const auto silent = platform.makePipe();
            silent->fileHandleForReading()->setReadabilityHandler([](FileHandle&) {});
            static_cast<void>(runMainLoopUntil([] { return false; }, 0.05));
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace

} // namespace harbrook::tests
