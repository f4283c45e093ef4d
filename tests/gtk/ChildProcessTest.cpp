#include "platform/gtk/foundation/FileDescriptor.h"
#include "tests/gtk/ChildTest.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

namespace harbrook::tests {

namespace {

using testing::HasSubstr;

class ChildProcess : public ChildTest {
protected:
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

    /// As the system gives one when no descriptor is left.
    [[nodiscard]] static std::shared_ptr<Pipe> pipeWithoutDescriptors() {
        auto& platform = gtkPlatform();
        rlimit usual{};
        getrlimit(RLIMIT_NOFILE, &usual);
        const rlimit none{0, usual.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        auto pipe = platform.makePipe();
        setrlimit(RLIMIT_NOFILE, &usual);
        return pipe;
    }

    [[nodiscard]] static std::size_t openDescriptors() {
        const std::filesystem::directory_iterator entries("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
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

TEST_F(ChildProcess, without_descriptors_for_its_streams_is_not_started_on_the_shells_own) {
    const auto task = shell("echo leaked");
    task->setStandardOutput(pipeWithoutDescriptors());
    const auto error = task->launchAndReturnError();
    ASSERT_TRUE(error.has_value());
    EXPECT_THAT(error->localizedDescription, HasSubstr("Too many open files"));
}

TEST_F(ChildProcess, output_without_a_descriptor_is_at_its_end) {
    const auto pipe = pipeWithoutDescriptors();
    std::atomic<int> ends = 0;
    pipe->fileHandleForReading()->setReadabilityHandler([&](FileHandle& handle) {
        if (handle.availableData().empty()) ++ends;
    });
    EXPECT_TRUE(runMainLoopUntil([&] { return ends == 1; }, 5));
    pipe->fileHandleForReading()->setReadabilityHandler(nullptr);
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
    // What other tests have had open may close meanwhile.
    EXPECT_LE(openDescriptors(), before);
}

} // namespace

} // namespace harbrook::tests
