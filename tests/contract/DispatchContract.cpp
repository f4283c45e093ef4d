#include "tests/contract/Desktop.h"
#include "tests/support/Shared.h"

#include <gmock/gmock.h>

#include <atomic>
#include <vector>

namespace harbrook::contract {

namespace {

using testing::ElementsAre;

class Dispatch : public Contract {};

TEST_P(Dispatch, main_queue_runs_blocks_in_order_after_the_call) {
    std::vector<int> order;
    auto& queue = platform().mainQueue();
    for (int i = 0; i < 3; ++i)
        queue.async([&order, i] { order.push_back(i); });
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(runUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre(0, 1, 2));
}

TEST_P(Dispatch, a_block_that_a_block_adds_comes_after_those_that_wait) {
    std::vector<std::string> order;
    auto& queue = platform().mainQueue();
    queue.async([&] {
        order.emplace_back("first");
        queue.async([&] { order.emplace_back("added"); });
    });
    queue.async([&] { order.emplace_back("second"); });
    ASSERT_TRUE(runUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre("first", "second", "added"));
}

TEST_P(Dispatch, main_queue_is_the_main_thread_and_the_global_queue_is_not) {
    EXPECT_TRUE(platform().isMainThread());
    std::atomic<bool> workerIsMain = true;
    bool blockIsMain = false;
    bool done = false;
    platform().globalQueue().async([&] {
        workerIsMain = platform().isMainThread();
        platform().mainQueue().async([&] {
            blockIsMain = platform().isMainThread();
            done = true;
        });
    });
    ASSERT_TRUE(runUntil([&] { return done; }));
    EXPECT_FALSE(workerIsMain);
    EXPECT_TRUE(blockIsMain);
}

TEST_P(Dispatch, blocks_of_one_worker_keep_their_order_on_the_main_queue) {
    constexpr int count = 500;
    std::vector<int> order;
    platform().globalQueue().async([&] {
        for (int i = 0; i < count; ++i)
            platform().mainQueue().async([&order, i] { order.push_back(i); });
    });
    ASSERT_TRUE(runUntil([&] { return order.size() == count; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_P(Dispatch, a_delayed_block_runs_after_its_delay_and_in_the_order_of_the_moments) {
    std::vector<std::string> order;
    const double start = desktop().now();
    double lateAt = 0;
    double soonAt = 0;
    platform().mainQueue().asyncAfter(0.12, [&] {
        order.emplace_back("late");
        lateAt = desktop().now();
    });
    platform().mainQueue().asyncAfter(0.04, [&] {
        order.emplace_back("soon");
        soonAt = desktop().now();
    });
    platform().mainQueue().async([&] { order.emplace_back("now"); });
    ASSERT_TRUE(runUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre("now", "soon", "late"));
    EXPECT_GE(soonAt - start, 0.04);
    EXPECT_GE(lateAt - start, 0.12);
}

TEST_P(Dispatch, a_delayed_block_of_the_global_queue_runs_after_its_delay) {
    const double start = desktop().now();
    std::atomic<bool> ran = false;
    platform().globalQueue().asyncAfter(0.05, [&] { ran = true; });
    ASSERT_TRUE(runUntil([&] { return ran.load(); }));
    EXPECT_GE(desktop().now() - start, 0.05);
}

TEST_P(Dispatch, blocks_that_wait_do_not_hold_up_the_one_they_wait_for) {
    constexpr int waiting = 24;
    const auto gate = platform().makeSemaphore(0);
    std::atomic<int> passed = 0;
    for (int i = 0; i < waiting; ++i) {
        platform().globalQueue().async([&] {
            if (gate->wait(30)) ++passed;
        });
    }
    platform().globalQueue().async([&] {
        for (int i = 0; i < waiting; ++i)
            gate->signal();
    });
    ASSERT_TRUE(runUntil([&] { return passed == waiting; }));
}

TEST_P(Dispatch, a_semaphore_counts) {
    const auto semaphore = platform().makeSemaphore(2);
    tests::Shared<std::vector<bool>> results;
    std::atomic<bool> done = false;
    platform().globalQueue().async([&] {
        for (int i = 0; i < 3; ++i) {
            const bool lowered = semaphore->wait(0);
            results.change([&](auto& list) { list.push_back(lowered); });
        }
        semaphore->signal();
        const bool lowered = semaphore->wait(0);
        results.change([&](auto& list) { list.push_back(lowered); });
        done = true;
    });
    ASSERT_TRUE(runUntil([&] { return done.load(); }));
    EXPECT_THAT(results.get(), ElementsAre(true, true, false, true));
}

TEST_P(Dispatch, a_wait_that_nobody_ends_takes_its_whole_time) {
    const auto semaphore = platform().makeSemaphore(0);
    const double start = desktop().now();
    std::atomic<bool> lowered = true;
    std::atomic<bool> done = false;
    platform().globalQueue().async([&] {
        lowered = semaphore->wait(0.08);
        done = true;
    });
    ASSERT_TRUE(runUntil([&] { return done.load(); }));
    EXPECT_FALSE(lowered);
    EXPECT_GE(desktop().now() - start, 0.08);
}

TEST_P(Dispatch, what_a_block_holds_is_let_go_once_it_has_run) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    platform().mainQueue().async([held = std::move(held)] {});
    EXPECT_FALSE(watch.expired());
    EXPECT_TRUE(runUntil([&] { return watch.expired(); }));
}

class Timers : public Contract {};

TEST_P(Timers, a_repeating_timer_fires_until_it_is_invalidated) {
    int calls = 0;
    const double start = desktop().now();
    const auto timer = platform().scheduledTimerWithTimeInterval(0.02, true, [&] { ++calls; });
    EXPECT_EQ(calls, 0);
    ASSERT_TRUE(runUntil([&] { return calls >= 3; }));
    EXPECT_GE(desktop().now() - start, 0.06);
    timer->invalidate();
    const int before = calls;
    desktop().pass(0.1);
    EXPECT_EQ(calls, before);
}

TEST_P(Timers, a_timer_that_does_not_repeat_fires_once) {
    int calls = 0;
    const auto timer = platform().scheduledTimerWithTimeInterval(0.01, false, [&] { ++calls; });
    ASSERT_TRUE(runUntil([&] { return calls > 0; }));
    desktop().pass(0.1);
    EXPECT_EQ(calls, 1);
    timer->invalidate();
}

TEST_P(Timers, a_timer_stops_with_its_last_reference) {
    int calls = 0;
    auto timer = platform().scheduledTimerWithTimeInterval(0.01, true, [&] { ++calls; });
    timer.reset();
    desktop().pass(0.05);
    EXPECT_EQ(calls, 0);
}

TEST_P(Timers, a_timer_may_be_let_go_by_its_own_block) {
    int calls = 0;
    std::shared_ptr<Timer> timer;
    timer = platform().scheduledTimerWithTimeInterval(0.01, true, [&] {
        ++calls;
        timer.reset();
    });
    ASSERT_TRUE(runUntil([&] { return calls > 0; }));
    desktop().pass(0.05);
    EXPECT_EQ(calls, 1);
}

INSTANTIATE_TEST_SUITE_P(On, Dispatch, testing::Values(implementation()), nameOf);
INSTANTIATE_TEST_SUITE_P(On, Timers, testing::Values(implementation()), nameOf);

} // namespace

} // namespace harbrook::contract
