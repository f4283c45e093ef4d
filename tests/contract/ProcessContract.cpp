#include "tests/contract/Desktop.h"
#include "tests/support/Shared.h"

#include <atomic>

namespace harbrook::contract {

namespace {

class Process : public Contract {
protected:
    [[nodiscard]] std::shared_ptr<Task> taskFor(const Program& program) {
        auto task = platform().makeTask();
        task->setExecutableURL(desktop().makeProgram(program));
        return task;
    }

    /// What the program prints on standard output and on standard error.
    [[nodiscard]] std::pair<std::string, std::string> outputOf(const Program& program) {
        const auto task = taskFor(program);
        const auto output = platform().makePipe();
        const auto errorOutput = platform().makePipe();
        task->setStandardOutput(output);
        task->setStandardError(errorOutput);
        std::pair<std::string, std::string> printed;
        std::atomic<bool> done = false;
        platform().globalQueue().async([&] {
            EXPECT_FALSE(task->launchAndReturnError().has_value());
            printed.first = output->fileHandleForReading()->readDataToEndOfFile();
            printed.second = errorOutput->fileHandleForReading()->readDataToEndOfFile();
            task->waitUntilExit();
            done = true;
        });
        EXPECT_TRUE(runUntil([&] { return done.load(); }));
        return printed;
    }
};

TEST_P(Process, both_output_streams_are_read_to_their_end) {
    const auto printed = outputOf({.output = "one\ntwo\n", .errorOutput = "oops\n"});
    EXPECT_EQ(printed.first, "one\ntwo\n");
    EXPECT_EQ(printed.second, "oops\n");
}

TEST_P(Process, a_program_that_prints_nothing_reads_as_empty) {
    const auto printed = outputOf({});
    EXPECT_EQ(printed.first, "");
    EXPECT_EQ(printed.second, "");
}

TEST_P(Process, a_readability_handler_gets_everything_and_then_an_empty_read) {
    const auto task = taskFor({.output = "some words\n"});
    const auto output = platform().makePipe();
    task->setStandardOutput(output);
    tests::Shared<std::string> text;
    std::atomic<int> emptyReads = 0;
    std::atomic<int> callsAtOnce = 0;
    output->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
        EXPECT_EQ(++callsAtOnce, 1);
        const auto data = handle.availableData();
        if (data.empty()) ++emptyReads;
        text.change([&](auto& all) { all += data; });
        --callsAtOnce;
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    ASSERT_TRUE(runUntil([&] { return emptyReads > 0; }));
    desktop().pass(0.05);
    EXPECT_EQ(text.get(), "some words\n");
    task->waitUntilExit();
}

TEST_P(Process, a_handle_and_its_handler_live_until_end_of_file) {
    auto token = std::make_shared<int>();
    const std::weak_ptr<int> watch = token;
    tests::Shared<std::string> text;
    const auto task = taskFor({.output = "kept"});
    {
        const auto output = platform().makePipe();
        task->setStandardOutput(output);
        output->fileHandleForReading()->setReadabilityHandler(
            [&text, token = std::move(token)](FileHandle& handle) {
                const auto data = handle.availableData();
                text.change([&](auto& all) { all += data; });
            });
    }
    EXPECT_FALSE(watch.expired());
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    EXPECT_TRUE(runUntil([&] { return watch.expired(); }));
    EXPECT_EQ(text.get(), "kept");
    task->waitUntilExit();
}

TEST_P(Process, a_program_that_does_not_exist_is_an_error_in_words) {
    const auto task = platform().makeTask();
    task->setExecutableURL(desktop().directory() / "no-such-program");
    const auto error = task->launchAndReturnError();
    ASSERT_TRUE(error.has_value());
    EXPECT_NE(error->localizedDescription, "");
}

TEST_P(Process, a_handler_comes_to_end_of_file_when_the_launch_fails_and_the_pipe_goes) {
    std::atomic<int> emptyReads = 0;
    {
        const auto task = platform().makeTask();
        task->setExecutableURL(desktop().directory() / "no-such-program");
        const auto output = platform().makePipe();
        task->setStandardOutput(output);
        output->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
            if (handle.availableData().empty()) ++emptyReads;
        });
        ASSERT_TRUE(task->launchAndReturnError().has_value());
    }
    EXPECT_TRUE(runUntil([&] { return emptyReads > 0; }));
}

TEST_P(Process, the_terminate_request_ends_a_program_and_then_does_nothing) {
    const auto task = taskFor({.runsUntilTerminated = true});
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    task->terminate();
    task->waitUntilExit();
    task->terminate();
    task->waitUntilExit();
}

TEST_P(Process, standard_error_goes_to_a_file_beside_what_the_shell_writes) {
    const auto path = desktop().directory() / "log";
    ASSERT_TRUE(platform().fileManager().createFileAtPath(path));
    const auto log = platform().fileHandleForWritingToURL(path);
    ASSERT_NE(log, nullptr);
    log->writeData("shell\n");
    const auto task = taskFor({.errorOutput = "child\n"});
    task->setStandardError(log);
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    task->waitUntilExit();
    log->writeData("shell again\n");
    EXPECT_EQ(desktop().contents(path), "shell\nchild\nshell again\n");
}

TEST_P(Process, the_null_device_reads_as_empty_and_swallows) {
    const auto handle = platform().fileHandleWithNullDevice();
    ASSERT_NE(handle, nullptr);
    handle->writeData("anything");
    EXPECT_EQ(handle->availableData(), "");
    EXPECT_EQ(handle->readDataToEndOfFile(), "");
}

TEST_P(Process, the_shell_knows_itself) {
    EXPECT_GT(platform().processInfo().processIdentifier(), 0);
    EXPECT_FALSE(platform().processInfo().environment().empty());
    EXPECT_TRUE(platform().processInfo().loginShell().is_absolute());
}

INSTANTIATE_TEST_SUITE_P(On, Process, testing::Values(implementation()), nameOf);

} // namespace

} // namespace harbrook::contract
