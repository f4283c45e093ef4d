#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <vector>

namespace harbrook::gtk {

/// Signal handlers that are disconnected when their owner goes, so that none is called with a dead receiver.
/// Keeps the instances alive meanwhile.
class SignalConnections {
public:
    SignalConnections() = default;
    SignalConnections(const SignalConnections&) = delete;
    SignalConnections& operator=(const SignalConnections&) = delete;
    ~SignalConnections() { clear(); }

    /// Disconnects all of them now.
    void clear() {
        for (const auto& connection : connections_) {
            g_signal_handler_disconnect(connection.instance.get(), connection.handler);
        }
        connections_.clear();
    }

    /// Calls `callback`, a captureless function with the signal's own signature, with `receiver` as its last
    /// argument.
    template <typename Instance, typename Callback>
    void add(Instance* instance, const char* signal, Callback callback, void* receiver) {
        const gulong handler = g_signal_connect(instance, signal, G_CALLBACK(+callback), receiver);
        connections_.push_back({GObjectPtr<GObject>::share(G_OBJECT(instance)), handler});
    }

private:
    struct Connection {
        GObjectPtr<GObject> instance;
        gulong handler;
    };
    std::vector<Connection> connections_;
};

} // namespace harbrook::gtk
