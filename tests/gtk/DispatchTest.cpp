#include "platform/gtk/foundation/ContextQueue.h"
#include "platform/gtk/foundation/GlobalQueue.h"
#include "platform/gtk/foundation/Semaphore.h"
#include "platform/gtk/foundation/Timer.h"
#include "tests/gtk/support/RealPlatform.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <thread>
#include <vector>

namespace harbrook::tests {

namespace {

TEST(MainLoop, stays_responsive_while_blocks_keep_adding_blocks) {
    auto& queue = gtkPlatform().mainQueue();
    bool stop = false;
    std::function<void()> again = [&] {
        if (!stop) queue.async(again);
    };
    queue.async(again);
    bool fired = false;
    const auto timer = gtkPlatform().scheduledTimerWithTimeInterval(0.02, false, [&] { fired = true; });
    EXPECT_TRUE(runMainLoopUntil([&] { return fired; }, 5));
    stop = true;
    static_cast<void>(runMainLoopUntil([] { return false; }, 0.02));
}

TEST(MainLoop, what_a_timer_missed_is_not_made_up_for) {
    int calls = 0;
    const auto timer = gtkPlatform().scheduledTimerWithTimeInterval(0.2, true, [&] { ++calls; });
    // Four calls are missed; while the loop turns, another one may fall due.
    std::this_thread::sleep_for(std::chrono::milliseconds(900));
    for (int i = 0; i < 10; ++i)
        g_main_context_iteration(nullptr, FALSE);
    EXPECT_LE(calls, 2);
    EXPECT_GE(calls, 1);
}

TEST(MainLoop, a_repeating_timer_does_not_drift) {
    using namespace std::chrono_literals;
    constexpr auto interval = 20ms;
    constexpr auto work = 5ms;
    constexpr int count = 20;
    const auto measure = [&] {
        int calls = 0;
        const auto start = gtk::Clock::now();
        const auto timer = gtkPlatform().scheduledTimerWithTimeInterval(0.02, true, [&] {
            std::this_thread::sleep_for(work);
            ++calls;
        });
        EXPECT_TRUE(runMainLoopUntil([&] { return calls == count; }));
        return gtk::Clock::now() - start;
    };
    // A timer that added up its delays could not do better than this. On a busy machine a sound one misses
    // a multiple now and then, but not every time.
    constexpr auto drifting = count * (interval + work);
    bool sound = false;
    for (int attempt = 0; attempt < 10 && !sound; ++attempt)
        sound = measure() < drifting;
    EXPECT_TRUE(sound);
}

TEST(MainLoop, takes_blocks_from_many_threads_at_once) {
    constexpr int threads = 8;
    constexpr int each = 500;
    // Made here: a platform belongs to the thread that makes it.
    auto& mainQueue = gtkPlatform().mainQueue();
    std::vector<std::vector<int>> seen(threads);
    int total = 0;
    std::vector<std::thread> posters;
    posters.reserve(threads);
    for (int thread = 0; thread < threads; ++thread) {
        posters.emplace_back([&, thread] {
            for (int i = 0; i < each; ++i) {
                mainQueue.async([&, thread, i] {
                    seen[static_cast<std::size_t>(thread)].push_back(i);
                    ++total;
                });
            }
        });
    }
    EXPECT_TRUE(runMainLoopUntil([&] { return total == threads * each; }));
    for (std::thread& poster : posters)
        poster.join();
    for (const auto& order : seen)
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(Workers, idle_ones_are_used_again) {
    gtk::GlobalQueue queue;
    // The system's numbers: the library's come again with new threads.
    std::set<pid_t> threads;
    bool usedAgain = false;
    for (int i = 0; i < 1000 && !usedAgain; ++i) {
        gtk::Semaphore done(0);
        queue.async([&] {
            usedAgain = !threads.insert(gettid()).second;
            done.signal();
        });
        ASSERT_TRUE(done.wait(30));
        // The worker is idle a moment after its block has signalled.
        std::this_thread::yield();
    }
    EXPECT_TRUE(usedAgain);
}

TEST(Workers, a_burst_of_blocks_all_run) {
    gtk::GlobalQueue queue;
    constexpr int count = 3000;
    std::atomic<int> ran = 0;
    gtk::Semaphore done(0);
    for (int i = 0; i < count; ++i) {
        queue.async([&] {
            if (++ran == count) done.signal();
        });
    }
    EXPECT_TRUE(done.wait(60));
}

TEST(Workers, delayed_blocks_run_though_every_worker_is_busy) {
    gtk::GlobalQueue queue;
    auto gate = std::make_shared<gtk::Semaphore>(0);
    for (int i = 0; i < 4; ++i)
        queue.async([gate] { static_cast<void>(gate->wait(30)); });
    for (int i = 0; i < 4; ++i)
        queue.asyncAfter(0.01 * i, [gate] { gate->signal(); });
    gtk::Semaphore ended(0);
    queue.asyncAfter(0.05, [&] { ended.signal(); });
    EXPECT_TRUE(ended.wait(30));
}

TEST(Workers, outlive_their_queue) {
    auto gate = std::make_shared<gtk::Semaphore>(0);
    auto ended = std::make_shared<gtk::Semaphore>(0);
    {
        gtk::GlobalQueue queue;
        queue.async([gate, ended] {
            static_cast<void>(gate->wait(30));
            ended->signal();
        });
    }
    gate->signal();
    EXPECT_TRUE(ended->wait(30));
}

TEST(Workers, a_serial_queue_runs_one_block_at_a_time_in_order) {
    gtk::GlobalQueue workers;
    gtk::SerialQueue queue(workers);
    std::vector<int> order;
    std::atomic<int> atOnce = 0;
    gtk::Semaphore done(0);
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        queue.async([&, i] {
            EXPECT_EQ(++atOnce, 1);
            order.push_back(i);
            --atOnce;
            if (i == count - 1) done.signal();
        });
    }
    ASSERT_TRUE(done.wait(30));
    EXPECT_EQ(order.size(), static_cast<std::size_t>(count));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(RandomBytes, take_many_values) {
    std::set<int> values;
    for (int i = 0; i < 4096; ++i)
        values.insert(gtkPlatform().secureRandomByte());
    // Missing more than a handful of the 256 is beyond any chance.
    EXPECT_GT(values.size(), 250U);
}

} // namespace

} // namespace harbrook::tests
