#include "tests/gtk/support/RealPlatform.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>

namespace harbrook::tests {

namespace {

/// While it lives, the system refuses every new thread: there is no room for another stack.
class NoThreadLeft {
public:
    NoThreadLeft() {
        getrlimit(RLIMIT_AS, &before_);
        rlimit none = before_;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_AS, &none);
    }
    ~NoThreadLeft() { setrlimit(RLIMIT_AS, &before_); }
    NoThreadLeft(const NoThreadLeft&) = delete;
    NoThreadLeft& operator=(const NoThreadLeft&) = delete;

    [[nodiscard]] static bool isSo() {
        try {
            std::thread([] {}).join();
        } catch (const std::system_error&) {
            return true;
        }
        return false;
    }

private:
    rlimit before_{};
};

/// Room on the one heap, for what is allocated while none can be had from the system. Before the first
/// thread.
void makeRoomOnHeap() {
    constexpr int room = 8 * 1024 * 1024;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, 2 * room);
    mallopt(M_TRIM_THRESHOLD, 2 * room);
    std::make_unique_for_overwrite<char[]>(room).reset();
}

[[noreturn]] void leave(bool right) {
    std::_Exit(right ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// Each in a process of its own, which has no stack of an earlier thread to give to a new one.
class WithoutThreads : public testing::Test {
protected:
    void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "the sanitizers need memory all the time";
#endif
    }
};

TEST_F(WithoutThreads, a_readability_handler_is_never_called_and_harms_nothing) {
    EXPECT_EXIT(
        {
            makeRoomOnHeap();
            const auto pipe = gtkPlatform().makePipe();
            std::atomic<bool> called = false;
            pipe->fileHandleForWriting()->writeData("words");
            {
                const NoThreadLeft none;
                if (!NoThreadLeft::isSo()) leave(false);
                pipe->fileHandleForReading()->setReadabilityHandler([&](FileHandle&) { called = true; });
            }
            static_cast<void>(runMainLoopUntil([] { return false; }, 0.05));
            leave(!called && pipe->fileHandleForReading()->availableData() == "words");
        },
        testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(WithoutThreads, a_request_fails_and_the_next_one_is_tried) {
    EXPECT_EXIT(
        {
            makeRoomOnHeap();
            auto& session = gtkPlatform().sharedSession();
            const URLRequest request(*URL::URLWithString("http://localhost:1/"));
            std::atomic<int> failures = 0;
            const auto countFailure = [&](const auto&, const auto&, const std::optional<Error>& error) {
                if (error) ++failures;
            };
            const auto first = session.dataTaskWithRequest(request, countFailure);
            // The worker that serves the completions is there, as it is in the shell.
            std::atomic<bool> working = false;
            gtkPlatform().globalQueue().async([&] { working = true; });
            if (!runMainLoopUntil([&] { return working.load(); })) leave(false);
            {
                const NoThreadLeft none;
                if (!NoThreadLeft::isSo()) leave(false);
                first->resume();
            }
            session.dataTaskWithRequest(request, countFailure)->resume();
            leave(runMainLoopUntil([&] { return failures == 2; }));
        },
        testing::ExitedWithCode(EXIT_SUCCESS), "");
}

} // namespace

} // namespace harbrook::tests
