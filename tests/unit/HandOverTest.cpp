#include "tests/unit/ShellTest.h"

#include "platform/recording/Appearance.h"
#include "server/ServerSlot.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace harbrook::tests {
namespace {

// What a worker hands over to the main thread, with real threads that run at the same time: a sanitizer for
// threads sees here what the recorded desktop, where one thread runs at a time, would hide.

class HandOver : public ShellTest {
protected:
    void SetUp() override { makeShell(); }
};

TEST_F(HandOver, readers_see_the_placeholder_or_the_whole_address_and_never_a_mixture) {
    for (int round = 0; round < 100; ++round) {
        Globals shared(*platform);
        std::vector<std::thread> readers;
        std::atomic<int> mixtures = 0;
        for (int i = 0; i < 2; ++i) {
            readers.emplace_back([&] {
                for (int look = 0; look < 50; ++look) {
                    const auto port = shared.serverPort();
                    const auto address = shared.baseURL().absoluteString();
                    const bool known = port == 0 || port == 47545;
                    const bool whole =
                        address == "http://localhost:1/" || address == "http://localhost:47545/";
                    if (!known || !whole) ++mixtures;
                }
            });
        }
        std::thread writer([&] {
            shared.setServerPort(47545);
            shared.setBaseURL(*URL::URLWithString("http://localhost:47545/"));
        });
        writer.join();
        EXPECT_EQ(shared.serverPort(), 47545);
        EXPECT_EQ(shared.baseURL().absoluteString(), "http://localhost:47545/");
        for (auto& reader : readers)
            reader.join();
        EXPECT_EQ(mixtures, 0);
    }
}

TEST_F(HandOver, whoever_hears_of_the_success_sees_the_address) {
    for (int round = 0; round < 500; ++round) {
        Globals shared(*platform);
        std::mutex mutex;
        std::condition_variable posted;
        bool success = false;
        std::thread launcher([&] {
            shared.setServerPort(47545);
            shared.setBaseURL(*URL::URLWithString("http://localhost:47545/"));
            const std::lock_guard lock(mutex);
            success = true;
            posted.notify_one();
        });
        {
            std::unique_lock lock(mutex);
            posted.wait(lock, [&] { return success; });
        }
        EXPECT_EQ(shared.serverPort(), 47545);
        EXPECT_EQ(shared.baseURL().port(), 47545);
        launcher.join();
    }
}

/// A child that may be launched and stopped from any thread.
class CountingTask final : public Task {
public:
    void setExecutableURL(std::filesystem::path) override {}
    void setArguments(std::vector<std::string>) override {}
    void setCurrentDirectoryURL(std::filesystem::path) override {}
    void setEnvironment(Environment) override {}
    void setStandardInput(std::shared_ptr<Pipe>) override {}
    void setStandardOutput(std::shared_ptr<Pipe>) override {}
    void setStandardError(std::shared_ptr<Pipe>) override {}
    void setStandardError(std::shared_ptr<FileHandle>) override {}
    std::optional<Error> launchAndReturnError() override {
        launched = true;
        return std::nullopt;
    }
    void terminate() override { terminated = true; }
    void waitUntilExit() override { waited = true; }

    std::atomic<bool> launched = false;
    std::atomic<bool> terminated = false;
    std::atomic<bool> waited = false;
};

TEST_F(HandOver, a_quit_during_the_launch_leaves_no_child_that_nobody_stops) {
    int started = 0;
    for (int round = 0; round < 500; ++round) {
        ServerSlot slot;
        const auto task = std::make_shared<CountingTask>();
        std::thread launcher([&] { (void)slot.launch(task); });
        // Before, during and after the launch.
        if (round % 3 == 1) std::this_thread::yield();
        while (round % 3 == 2 && !task->launched)
            std::this_thread::yield();
        slot.terminateAndWait();
        launcher.join();
        EXPECT_EQ(task->launched, task->terminated);
        EXPECT_EQ(task->launched, task->waited);
        EXPECT_EQ(task->launched, slot.task() != nullptr);
        started += task->launched;
    }
    EXPECT_GE(started, 500 / 3);
}

TEST_F(HandOver, the_canvas_may_be_resolved_on_several_threads_at_once) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            const auto& provider = *std::get<Color::Dynamic>(AppDelegate::canvas().source());
            for (int round = 0; round < 200; ++round) {
                if (provider(recording::Appearance::dark()).red != 22.0 / 255) ++wrong;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace harbrook::tests
