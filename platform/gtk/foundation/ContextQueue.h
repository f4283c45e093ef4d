#pragma once

#include "platform/Dispatch.h"
#include "platform/gtk/foundation/Clock.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <map>
#include <mutex>

namespace harbrook::gtk {

/// A serial queue whose blocks run on the thread that runs the main context `context`, in the order in which
/// they fall due; blocks that fall due together keep the order in which they were added. Any thread may add.
/// To be destroyed where the context runs, or after it has stopped.
class ContextQueue final : public DispatchQueue {
public:
    explicit ContextQueue(GMainContext* context);
    ~ContextQueue() override;
    ContextQueue(const ContextQueue&) = delete;
    ContextQueue& operator=(const ContextQueue&) = delete;

    void async(Block block) override { add(Clock::now(), std::move(block)); }
    void asyncAfter(double seconds, Block block) override { add(momentAfter(seconds), std::move(block)); }

private:
    struct Source;

    void add(Clock::time_point due, Block block);
    void runDueBlocks() noexcept;
    /// Has the context wake up for the first block, with the mutex held.
    void arm();

    std::mutex mutex_;
    std::multimap<Clock::time_point, Block> blocks_;
    GSourcePtr source_;
};

} // namespace harbrook::gtk
