#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace harbrook::gtk {

/// The clock that delays are measured on. It is CLOCK_MONOTONIC, as GLib's monotonic time is, so that the two
/// can be compared; changes to the time of day do not touch it.
using Clock = std::chrono::steady_clock;

/// `seconds` as a delay: none below zero, and none beyond thirty years, so that no sum overflows.
[[nodiscard]] inline Clock::duration delayOf(double seconds) {
    const double bounded = seconds > 0 ? std::min(seconds, 1e9) : 0;
    return std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(bounded));
}

/// The moment `seconds` from now.
[[nodiscard]] inline Clock::time_point momentAfter(double seconds) {
    return Clock::now() + delayOf(seconds);
}

/// `moment` as GLib counts it, in microseconds, rounded up so that nothing fires early.
[[nodiscard]] inline std::int64_t monotonicMicroseconds(Clock::time_point moment) {
    return std::chrono::ceil<std::chrono::microseconds>(moment.time_since_epoch()).count();
}

} // namespace harbrook::gtk
