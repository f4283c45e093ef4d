#include "platform/gtk/app/TerminationSignals.h"

#include <glib-unix.h>

#include <csignal>
#include <system_error>
#include <utility>

namespace harbrook::gtk {

TerminationSignals::TerminationSignals(GMainContext* context, std::function<void()> received)
    : received_(std::move(received)) {
    const auto call = [](void* self) noexcept -> gboolean {
        static_cast<TerminationSignals*>(self)->received_();
        return G_SOURCE_CONTINUE;
    };
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        GSourcePtr source(g_unix_signal_source_new(number));
        g_source_set_callback(source.get(), +call, this, nullptr);
        g_source_attach(source.get(), context);
        sources_.push_back(std::move(source));
    }
}

TerminationSignals::~TerminationSignals() {
    for (const auto& source : sources_)
        g_source_destroy(source.get());
}

ImpatientRequests::ImpatientRequests(std::function<void()> received)
    : context_(g_main_context_new()),
      loop_(g_main_loop_new(context_.get(), FALSE)),
      signals_(context_.get(), [received = std::move(received), begun = g_get_monotonic_time()] {
          if (g_get_monotonic_time() - begun > G_TIME_SPAN_SECOND) received();
      }) {
    try {
        thread_ = std::thread([this] { g_main_loop_run(loop_.get()); });
    } catch (const std::system_error&) {
        // The system has no thread left: nobody hears, and the end is waited for all the same.
    }
}

ImpatientRequests::~ImpatientRequests() {
    if (!thread_.joinable()) return;
    // Whether or not the thread has come to run it.
    GSourcePtr end(g_idle_source_new());
    const auto quit = [](void* loop) noexcept -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(end.get(), +quit, loop_.get(), nullptr);
    g_source_attach(end.get(), context_.get());
    thread_.join();
}

} // namespace harbrook::gtk
