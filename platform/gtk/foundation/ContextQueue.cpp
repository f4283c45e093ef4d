#include "platform/gtk/foundation/ContextQueue.h"

#include <utility>
#include <vector>

namespace harbrook::gtk {

struct ContextQueue::Source {
    GSource base;
    ContextQueue* queue;

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
        reinterpret_cast<Source*>(source)->queue->runDueBlocks();
        return G_SOURCE_CONTINUE;
    }
};

ContextQueue::ContextQueue(GMainContext* context) {
    static GSourceFuncs functions{nullptr, nullptr, Source::dispatch, nullptr, nullptr, nullptr};
    source_.reset(g_source_new(&functions, sizeof(Source)));
    reinterpret_cast<Source*>(source_.get())->queue = this;
    g_source_set_static_name(source_.get(), "harbrook queue");
    g_source_attach(source_.get(), context);
}

ContextQueue::~ContextQueue() {
    g_source_destroy(source_.get());
}

void ContextQueue::add(Clock::time_point due, Block block) {
    const std::lock_guard lock(mutex_);
    const auto position = blocks_.emplace(due, std::move(block));
    if (position == blocks_.begin()) arm();
}

void ContextQueue::arm() {
    g_source_set_ready_time(
        source_.get(), blocks_.empty() ? -1 : monotonicMicroseconds(blocks_.begin()->first));
}

void ContextQueue::runDueBlocks() noexcept {
    // Blocks that these blocks add wait for the next turn of the loop, so that its other sources get theirs.
    std::vector<Block> due;
    {
        const std::lock_guard lock(mutex_);
        const auto end = blocks_.upper_bound(Clock::now());
        for (auto position = blocks_.begin(); position != end; ++position) {
            due.push_back(std::move(position->second));
        }
        blocks_.erase(blocks_.begin(), end);
        arm();
    }
    for (Block& block : due) {
        // What a block holds is let go before the next one runs.
        std::exchange(block, nullptr)();
    }
}

} // namespace harbrook::gtk
