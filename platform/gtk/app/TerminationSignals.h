#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <functional>
#include <thread>
#include <vector>

namespace harbrook::gtk {

/// While this exists, SIGTERM, SIGINT and SIGHUP do not end the process but call `received`.
class TerminationSignals {
public:
    /// `received` is called by whoever runs `context` (null for the default one).
    TerminationSignals(GMainContext* context, std::function<void()> received);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    ~TerminationSignals();

private:
    std::function<void()> received_;
    std::vector<GSourcePtr> sources_;
};

/// Hears of requests to terminate on a thread of its own, while the main thread is at something that may take
/// for ever. Those of the first second still belong to the request that is being carried out: a shutdown
/// sends several signals. Main thread.
class ImpatientRequests {
public:
    /// `received` is called on that thread.
    explicit ImpatientRequests(std::function<void()> received);
    ImpatientRequests(const ImpatientRequests&) = delete;
    ImpatientRequests& operator=(const ImpatientRequests&) = delete;
    ~ImpatientRequests();

private:
    std::unique_ptr<GMainContext, FreeWith<g_main_context_unref>> context_;
    std::unique_ptr<GMainLoop, FreeWith<g_main_loop_unref>> loop_;
    TerminationSignals signals_;
    std::thread thread_;
};

} // namespace harbrook::gtk
