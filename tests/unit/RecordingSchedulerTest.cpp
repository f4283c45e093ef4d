#include "platform/recording/Platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingScheduler : public testing::Test {
protected:
    ~RecordingScheduler() override { platform.shutDown(); }

    recording::Platform platform;
    std::vector<std::string> done;

    Block note(std::string what) {
        return [this, what = std::move(what)] { done.push_back(what); };
    }
};

TEST_F(RecordingScheduler, blocks_of_the_main_queue_run_in_their_order_and_only_when_told) {
    platform.mainQueue().async(note("first"));
    platform.mainQueue().async(note("second"));
    EXPECT_THAT(done, IsEmpty());
    EXPECT_EQ(platform.scheduler().pendingMainBlocks(), 2);
    EXPECT_EQ(platform.scheduler().runMainQueue(), 2);
    EXPECT_THAT(done, ElementsAre("first", "second"));
    EXPECT_EQ(platform.scheduler().pendingMainBlocks(), 0);
}

TEST_F(RecordingScheduler, delayed_blocks_run_by_their_moment_and_see_it_on_the_clock) {
    std::vector<double> moments;
    for (const double delay : {2.0, 0.5, 1.0}) {
        platform.mainQueue().asyncAfter(delay, [&] { moments.push_back(platform.now()); });
    }
    platform.advance(0.75);
    EXPECT_THAT(moments, ElementsAre(0.5));
    platform.advance(5);
    EXPECT_THAT(moments, ElementsAre(0.5, 1.0, 2.0));
    EXPECT_EQ(platform.now(), 5.75);
}

TEST_F(RecordingScheduler, forty_steps_of_two_fifths_make_exactly_sixteen_seconds) {
    int left = 40;
    Block step = [&] {
        if (--left > 0) platform.mainQueue().asyncAfter(0.4, step);
    };
    platform.mainQueue().asyncAfter(0.4, step);
    platform.advance(15.999);
    EXPECT_EQ(left, 1);
    platform.advance(0.001);
    EXPECT_EQ(left, 0);
}

TEST_F(RecordingScheduler, a_worker_that_waits_lets_the_test_go_on_until_it_is_signalled) {
    const auto semaphore = platform.makeSemaphore(0);
    platform.globalQueue().async([&] { done.push_back(semaphore->wait(10) ? "signalled" : "timed out"); });
    platform.advance(9.9);
    EXPECT_THAT(done, IsEmpty());
    EXPECT_THAT(platform.scheduler().blockedWorkers(), ElementsAre("global 1"));
    semaphore->signal();
    platform.settle();
    EXPECT_THAT(done, ElementsAre("signalled"));
}

TEST_F(RecordingScheduler, a_wait_ends_at_its_time_and_not_before) {
    const auto semaphore = platform.makeSemaphore(0);
    platform.globalQueue().async([&] { done.push_back(semaphore->wait(10) ? "signalled" : "timed out"); });
    platform.advance(9.999);
    EXPECT_THAT(done, IsEmpty());
    platform.advance(0.001);
    EXPECT_THAT(done, ElementsAre("timed out"));
}

TEST_F(RecordingScheduler, workers_run_in_the_order_that_the_test_chooses) {
    for (const auto* name : {"a", "b", "c"})
        platform.globalQueue().async(note(name));
    EXPECT_THAT(platform.scheduler().runnableWorkers(), ElementsAre("global 1", "global 2", "global 3"));
    platform.scheduler().runWorker("global 2");
    platform.scheduler().setWorkerChoice([](std::size_t count) { return count - 1; });
    platform.scheduler().runWorkers();
    EXPECT_THAT(done, ElementsAre("b", "c", "a"));
}

TEST_F(RecordingScheduler, workers_are_not_on_the_main_thread) {
    bool onMain = true;
    platform.globalQueue().async([&] { onMain = platform.isMainThread(); });
    platform.settle();
    EXPECT_FALSE(onMain);
    EXPECT_TRUE(platform.isMainThread());
}

TEST_F(RecordingScheduler, a_timer_repeats_until_it_is_invalidated) {
    const auto timer = platform.scheduledTimerWithTimeInterval(3, true, note("tick"));
    platform.advance(2.9);
    EXPECT_THAT(done, IsEmpty());
    platform.advance(3.2);
    EXPECT_THAT(done, ElementsAre("tick", "tick"));
    timer->invalidate();
    platform.advance(30);
    EXPECT_EQ(done.size(), 2U);
}

TEST_F(RecordingScheduler, a_timer_stops_when_nobody_keeps_it) {
    auto timer = platform.scheduledTimerWithTimeInterval(3, true, note("tick"));
    timer.reset();
    platform.advance(30);
    EXPECT_THAT(done, IsEmpty());
}

TEST_F(RecordingScheduler, a_timer_that_fires_once_fires_once) {
    const auto timer = platform.scheduledTimerWithTimeInterval(3, false, note("tick"));
    platform.advance(30);
    EXPECT_THAT(done, ElementsAre("tick"));
}

TEST_F(RecordingScheduler, what_queues_itself_again_and_again_is_refused) {
    Block again = [&] { platform.mainQueue().async(again); };
    again();
    EXPECT_THROW(platform.settle(), recording::Refused);
}

TEST_F(RecordingScheduler, a_refusal_on_a_worker_reaches_the_test) {
    platform.globalQueue().async([&] { (void)platform.sharedApplication(); });
    EXPECT_THROW(platform.settle(), recording::Refused);
}

TEST_F(RecordingScheduler, the_end_lets_blocked_workers_return_and_drops_the_rest) {
    const auto semaphore = platform.makeSemaphore(0);
    platform.globalQueue().async([&] {
        (void)semaphore->wait(10);
        done.emplace_back("returned");
    });
    platform.settle();
    platform.globalQueue().async(note("never started"));
    platform.mainQueue().async(note("never run"));
    platform.shutDown();
    EXPECT_THAT(done, ElementsAre("returned"));
}

TEST_F(RecordingScheduler, the_main_thread_must_not_wait_for_a_semaphore) {
    const auto semaphore = platform.makeSemaphore(1);
    EXPECT_THROW((void)semaphore->wait(1), recording::Refused);
}

} // namespace
} // namespace harbrook::tests
