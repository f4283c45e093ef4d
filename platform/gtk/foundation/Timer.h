#pragma once

#include "platform/Dispatch.h"
#include "platform/gtk/foundation/Clock.h"
#include "platform/gtk/foundation/GObjectPtr.h"

namespace harbrook::gtk {

/// A timer of the main loop. A repeating one keeps to the multiples of its interval: a late call does not
/// delay the later ones, and what was missed while the loop was busy is not made up for.
class Timer final : public harbrook::Timer {
public:
    Timer(double seconds, bool repeats, Block block);
    ~Timer() override { invalidate(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void invalidate() override { g_source_destroy(source_.get()); }

private:
    struct Source;

    void fire() noexcept;

    Clock::duration interval_;
    bool repeats_;
    Clock::time_point next_;
    std::shared_ptr<const Block> block_;
    GSourcePtr source_;
};

} // namespace harbrook::gtk
