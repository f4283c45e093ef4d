#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <string>
#include <string_view>

namespace harbrook::gtk {

/// Answers for one interface of an object on a bus. Called on the main thread.
class DBusHandler {
public:
    virtual ~DBusHandler() = default;
    /// Takes over the invocation: it must be answered, with a value or an error.
    virtual void handleMethod(
        std::string_view method, GVariant* arguments, GObjectPtr<GDBusMethodInvocation> invocation) = 0;
    /// The value of a property that the interface has, as a floating reference.
    [[nodiscard]] virtual GVariant* property(std::string_view name) = 0;
};

/// An object on a bus with one interface. It leaves the bus when destroyed, and must not outlive its handler.
/// Main thread; nothing blocks.
class DBusObject {
public:
    /// `introspection` is the XML of one node with one interface. A path that is taken leaves the object
    /// unexported, which nobody is told.
    DBusObject(
        GObjectPtr<GDBusConnection> connection, std::string path, const char* introspection,
        DBusHandler& handler);
    ~DBusObject();
    DBusObject(const DBusObject&) = delete;
    DBusObject& operator=(const DBusObject&) = delete;

    [[nodiscard]] GDBusConnection* connection() const { return connection_.get(); }
    /// Sends a signal of the interface to whoever listens; `arguments` is a tuple (a floating one is
    /// consumed) or null for none.
    void emitSignal(const char* name, GVariant* arguments = nullptr);

private:
    GObjectPtr<GDBusConnection> connection_;
    std::string path_;
    std::string interface_;
    guint registration_ = 0;
};

} // namespace harbrook::gtk
