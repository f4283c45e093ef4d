#include "platform/gtk/foundation/FileDescriptor.h"
#include "tests/contract/Shared.h"
#include "tests/contract/gtk/GtkDesktop.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

namespace harbrook::contract {

namespace {

using testing::HasSubstr;

/// What only real children can show.
class ChildProcess : public testing::Test {
protected:
    [[nodiscard]] static std::shared_ptr<Task> shell(const std::string& command) {
        auto task = gtkPlatform().makeTask();
        task->setExecutableURL("/bin/sh");
        task->setArguments({"-c", command});
        return task;
    }

    [[nodiscard]] static std::string outputOf(const std::shared_ptr<Task>& task) {
        const auto pipe = gtkPlatform().makePipe();
        task->setStandardOutput(pipe);
        const auto error = task->launchAndReturnError();
        EXPECT_FALSE(error.has_value()) << error->localizedDescription;
        auto output = pipe->fileHandleForReading()->readDataToEndOfFile();
        task->waitUntilExit();
        return output;
    }

    [[nodiscard]] std::string errorOf(const std::filesystem::path& executable) const {
        const auto task = gtkPlatform().makeTask();
        task->setExecutableURL(executable);
        const auto error = task->launchAndReturnError();
        return error ? error->localizedDescription : "none";
    }

    /// The signals that a program's status names under `field`, less the two that the C library keeps to
    /// itself and ignores in every child that it spawns.
    [[nodiscard]] static unsigned long long signalsIn(const std::string& status, const std::string& field) {
        constexpr unsigned long long reserved = 0x1'8000'0000;
        const auto position = status.find(field + ":\t");
        if (position == std::string::npos) return ~0ULL;
        return std::stoull(status.substr(position + field.size() + 2), nullptr, 16) & ~reserved;
    }

    [[nodiscard]] static std::size_t openDescriptors() {
        const std::filesystem::directory_iterator entries("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_.path(); }

private:
    TemporaryDirectory directory_;
};

TEST_F(ChildProcess, has_no_open_file_beyond_its_three_streams) {
    // One that a careless library left open for children.
    const gtk::FileDescriptor careless(open("/dev/null", O_RDONLY));
    ASSERT_GT(careless.number(), 2);
    const auto unrelated = gtkPlatform().makePipe();
    EXPECT_EQ(outputOf(shell("ls /proc/$$/fd")), "0\n1\n2\n");
}

TEST_F(ChildProcess, has_default_signals) {
    const auto status = outputOf(shell("cat /proc/self/status"));
    EXPECT_EQ(signalsIn(status, "SigBlk"), 0U);
    EXPECT_EQ(signalsIn(status, "SigIgn"), 0U);
}

TEST_F(ChildProcess, started_by_a_worker_has_default_signals) {
    Shared<std::string> status;
    std::atomic<bool> done = false;
    gtkPlatform().globalQueue().async([&] {
        auto text = outputOf(shell("cat /proc/self/status"));
        status.change([&](std::string& all) { all = std::move(text); });
        done = true;
    });
    ASSERT_TRUE(runMainLoopUntil([&] { return done.load(); }));
    EXPECT_EQ(signalsIn(status.get(), "SigBlk"), 0U);
    EXPECT_EQ(signalsIn(status.get(), "SigIgn"), 0U);
}

TEST_F(ChildProcess, runs_in_the_directory_and_environment_it_was_given) {
    const auto task = shell("pwd; env | grep -v -e ^PWD= -e ^OLDPWD= -e ^SHLVL= -e ^_= | sort");
    task->setCurrentDirectoryURL(directory());
    task->setEnvironment({{"ONE", "1"}, {"TWO", "a=b c"}, {"PATH", "/usr/bin:/bin"}});
    EXPECT_EQ(outputOf(task), directory().string() + "\nONE=1\nPATH=/usr/bin:/bin\nTWO=a=b c\n");
}

TEST_F(ChildProcess, inherits_the_environment_that_the_shell_was_started_with) {
    // Here at the latest the program starts: the platform is made at its first use.
    static_cast<void>(gtkPlatform());
    setenv("HARBROOK_TEST_LATE", "set after the start", 1);
    EXPECT_EQ(outputOf(shell("echo \"[$HARBROOK_TEST_LATE]\"")), "[]\n");
    unsetenv("HARBROOK_TEST_LATE");
}

TEST_F(ChildProcess, launch_errors_say_what_is_wrong) {
    const auto plain = directory() / "plain";
    std::ofstream(plain) << "words";
    EXPECT_THAT(errorOf(directory() / "none"), HasSubstr("No such file"));
    EXPECT_THAT(errorOf(plain), HasSubstr("Permission denied"));
    EXPECT_THAT(errorOf(directory()), HasSubstr("Permission denied"));
    std::filesystem::permissions(plain, std::filesystem::perms::owner_all);
    EXPECT_THAT(errorOf(plain), HasSubstr("Exec format error"));
    std::ofstream(plain) << "#!/no/such/interpreter\n";
    EXPECT_THAT(errorOf(plain), HasSubstr("interpreter"));

    const auto task = shell("true");
    task->setCurrentDirectoryURL(directory() / "nowhere");
    const auto error = task->launchAndReturnError();
    ASSERT_TRUE(error.has_value());
    EXPECT_THAT(error->localizedDescription, HasSubstr("nowhere: No such file"));
}

TEST_F(ChildProcess, is_reaped_as_soon_as_it_ends_by_itself) {
    const auto task = shell("echo $$");
    const auto identifier = std::stoi(outputOf(task));
    const auto left = std::filesystem::path("/proc") / std::to_string(identifier);
    EXPECT_TRUE(runMainLoopUntil([&] { return !std::filesystem::exists(left); }, 5));
}

TEST_F(ChildProcess, is_reaped_even_if_nobody_keeps_its_task) {
    auto task = shell("echo $$; exec sleep 600");
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardOutput(pipe);
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    const auto identifier = std::stoi(pipe->fileHandleForReading()->availableData());
    task.reset();
    EXPECT_EQ(kill(identifier, SIGKILL), 0);
    const auto left = std::filesystem::path("/proc") / std::to_string(identifier);
    EXPECT_TRUE(runMainLoopUntil([&] { return !std::filesystem::exists(left); }, 5));
}

TEST_F(ChildProcess, finds_its_input_at_an_end_when_the_task_goes) {
    auto task = shell("cat; echo over");
    const auto output = gtkPlatform().makePipe();
    task->setStandardInput(gtkPlatform().makePipe());
    task->setStandardOutput(output);
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    task.reset();
    EXPECT_EQ(output->fileHandleForReading()->readDataToEndOfFile(), "over\n");
}

TEST_F(ChildProcess, reads_what_the_shell_writes) {
    const auto task = shell("head -n 1 | tr a-z A-Z");
    const auto input = gtkPlatform().makePipe();
    task->setStandardInput(input);
    const auto output = gtkPlatform().makePipe();
    task->setStandardOutput(output);
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    input->fileHandleForWriting()->writeData("words\n");
    EXPECT_EQ(output->fileHandleForReading()->readDataToEndOfFile(), "WORDS\n");
    task->waitUntilExit();
    // Nobody reads any more: neither an error nor a signal.
    input->fileHandleForWriting()->writeData("more\n");
}

TEST_F(ChildProcess, may_be_terminated_while_it_exits) {
    for (int i = 0; i < 50; ++i) {
        const auto task = shell("exit 0");
        ASSERT_FALSE(task->launchAndReturnError().has_value());
        std::thread other([&] { task->terminate(); });
        task->terminate();
        task->waitUntilExit();
        other.join();
    }
}

TEST_F(ChildProcess, that_is_stopped_goes_on_to_take_the_terminate_request) {
    // One without a trap would end all the same.
    const auto task = shell("trap 'exit 0' TERM; echo $$; read line");
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardInput(gtkPlatform().makePipe());
    task->setStandardOutput(pipe);
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    ASSERT_EQ(kill(std::stoi(pipe->fileHandleForReading()->availableData()), SIGSTOP), 0);
    task->terminate();
    std::atomic<bool> ended = false;
    gtkPlatform().globalQueue().async([&] {
        task->waitUntilExit();
        ended = true;
    });
    EXPECT_TRUE(runMainLoopUntil([&] { return ended.load(); }));
}

TEST_F(ChildProcess, two_hundred_in_turn_leave_nothing_open) {
    static_cast<void>(outputOf(shell("true")));
    const auto before = openDescriptors();
    for (int i = 0; i < 200; ++i)
        ASSERT_EQ(outputOf(shell("echo x")), "x\n");
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ChildProcess, many_at_once_each_have_their_own_streams) {
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

TEST_F(ChildProcess, a_flood_of_output_arrives_whole_and_in_order) {
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

TEST_F(ChildProcess, a_handler_meets_end_of_file_once) {
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

TEST_F(ChildProcess, has_exited_only_when_the_handler_has_dealt_with_its_last_words) {
    constexpr std::size_t size = 1'000'000;
    const auto task = shell("head -c " + std::to_string(size) + " /dev/zero");
    const auto pipe = gtkPlatform().makePipe();
    task->setStandardOutput(pipe);
    std::atomic<std::size_t> received = 0;
    pipe->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
        const auto data = handle.availableData();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        received += data.size();
    });
    ASSERT_FALSE(task->launchAndReturnError().has_value());
    task->waitUntilExit();
    EXPECT_EQ(received, size);
    ASSERT_TRUE(runMainLoopUntil([&] { return received == size; }));
}

TEST_F(ChildProcess, does_not_keep_others_waiting_for_a_handler_that_is_stuck) {
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

TEST_F(ChildProcess, does_not_keep_others_waiting_for_what_those_print_that_it_leaves_behind) {
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

TEST_F(ChildProcess, a_handler_may_be_taken_away) {
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

TEST_F(ChildProcess, a_full_disk_is_borne_in_silence) {
    const auto full = gtkPlatform().fileHandleForWritingToURL("/dev/full");
    ASSERT_NE(full, nullptr);
    full->writeData("lost");
}

TEST(ProcessEnd, does_not_wait_for_workers_and_survives_them) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
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

} // namespace harbrook::contract
