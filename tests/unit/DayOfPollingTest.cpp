#include "tests/unit/ShellTest.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace harbrook::tests {
namespace {

constexpr int pollsPerHour = 1200;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
/// Many times as slow; they find in any hour what they find in a day.
constexpr int hours = 3;
#else
constexpr int hours = 24;
#endif
/// After so many polls the answers begin again.
constexpr int period = 60;

/// What is in use of the heap, where the library tells.
std::size_t heapInUse() {
#if defined(__GLIBC__)
    return mallinfo2().uordblks;
#else
    return 0;
#endif
}

int projectsAt(int poll) {
    return poll % 9;
}

/// Other projects, and other ones among them that run, with each poll.
std::string snapshotAt(int poll) {
    std::string projects;
    for (int i = 0; i < projectsAt(poll); ++i) {
        const auto name = "project-" + std::to_string((poll + i) % period);
        projects += std::string(i ? "," : "") + R"({"name":")" + name + R"(","path":"/p/)" + name +
                    R"(","running":true,"ports":[)" + std::to_string(3000 + poll % period) +
                    R"(],"hasCommand":true,"appRunning":)" + (poll % 2 ? "true" : "false") + "}";
    }
    return R"({"projects":[)" + projects + R"(],"stats":{"running":0,"postgres":)" +
           std::to_string(poll % period) + R"(,"redis":2,"containers":3}})";
}

class DayOfPolling : public ShellTest {
protected:
    struct Held {
        int events;
        std::size_t exchanges;
        std::size_t workers;
        std::size_t heap;
    };

    [[nodiscard]] Held held() const {
        auto& scheduler = platform->scheduler();
        return {
            scheduler.pendingEvents(), session().open().size(),
            scheduler.blockedWorkers().size() + scheduler.runnableWorkers().size(), heapInUse()};
    }

    /// One turn of the poll timer, with one request: answered, answered with something else than a snapshot,
    /// or not at all.
    void poll(int number) {
        platform->advance(3);
        ASSERT_EQ(log().linesOf("session GET").size(), 1U);
        log().clear();
        session().forgetAnswered();
        if (number % period == period - 10) return;
        const bool broken = number % period == period - 20;
        session().open().back()->answer(200, broken ? "{}" : snapshotAt(number));
        platform->settle();
        const auto count = broken ? 0 : projectsAt(number);
        ASSERT_EQ(statusItem().shownButton().title(), count ? " " + std::to_string(count) : "");
    }
};

TEST_F(DayOfPolling, leaves_nothing_behind) {
    launchReady(4711);
    for (int number = 0; number < pollsPerHour; ++number)
        ASSERT_NO_FATAL_FAILURE(poll(number));
    const auto before = held();
    for (int hour = 1; hour < hours; ++hour) {
        for (int number = 0; number < pollsPerHour; ++number)
            ASSERT_NO_FATAL_FAILURE(poll(number));
        const auto now = held();
        EXPECT_EQ(now.events, before.events) << hour;
        EXPECT_EQ(now.exchanges, before.exchanges) << hour;
        EXPECT_EQ(now.workers, before.workers) << hour;
        // The allocator's stock of small free blocks counts as in use and still fills up. What every poll
        // left behind would be ten times as much.
        EXPECT_LE(now.heap, before.heap + 65536) << hour;
    }
}

} // namespace
} // namespace harbrook::tests
