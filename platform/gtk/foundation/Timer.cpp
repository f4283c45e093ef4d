#include "platform/gtk/foundation/Timer.h"

namespace harbrook::gtk {

namespace {

/// What an interval of zero or less stands for, as NSTimer has it.
constexpr Clock::duration shortestInterval = std::chrono::microseconds(100);

} // namespace

struct Timer::Source {
    GSource base;
    Timer* timer;

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
        reinterpret_cast<Source*>(source)->timer->fire();
        return G_SOURCE_CONTINUE;
    }
};

Timer::Timer(double seconds, bool repeats, Block block)
    : interval_(std::max(delayOf(seconds), shortestInterval)),
      repeats_(repeats),
      next_(Clock::now() + interval_),
      block_(std::make_shared<const Block>(std::move(block))) {
    static GSourceFuncs functions{nullptr, nullptr, Source::dispatch, nullptr, nullptr, nullptr};
    source_.reset(g_source_new(&functions, sizeof(Source)));
    reinterpret_cast<Source*>(source_.get())->timer = this;
    g_source_set_static_name(source_.get(), "harbrook timer");
    g_source_set_ready_time(source_.get(), monotonicMicroseconds(next_));
    g_source_attach(source_.get(), nullptr);
}

void Timer::fire() noexcept {
    if (repeats_) {
        const auto missed = (Clock::now() - next_) / interval_;
        next_ += (missed + 1) * interval_;
        g_source_set_ready_time(source_.get(), monotonicMicroseconds(next_));
    } else {
        invalidate();
    }
    // The block may destroy the timer.
    const auto block = block_;
    (*block)();
}

} // namespace harbrook::gtk
