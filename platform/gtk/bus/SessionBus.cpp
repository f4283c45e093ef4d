#include "platform/gtk/bus/SessionBus.h"

#include "platform/gtk/foundation/FileDescriptor.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace harbrook::gtk {

namespace {

constexpr auto addressVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr int patienceInMilliseconds = 500;

std::string sessionBusAddress() {
    if (const char* address = g_getenv(addressVariable)) return address;
    const std::string socket = std::string(g_get_user_runtime_dir()) + "/bus";
    if (!g_file_test(socket.c_str(), G_FILE_TEST_EXISTS)) return {};
    const GCharPtr escaped(g_dbus_address_escape_value(socket.c_str()));
    return std::string("unix:path=") + escaped.get();
}

/// The value of `key` in one entry of a bus address, unescaped.
std::optional<std::string> valueInEntry(std::string_view entry, std::string_view key) {
    entry.remove_prefix(entry.find(':') + 1);
    while (!entry.empty()) {
        const auto pair = entry.substr(0, entry.find(','));
        entry.remove_prefix(std::min(entry.size(), pair.size() + 1));
        if (!pair.starts_with(key) || pair.substr(key.size(), 1) != "=") continue;
        const GCharPtr value(
            g_uri_unescape_string(std::string(pair.substr(key.size() + 1)).c_str(), nullptr));
        if (value) return value.get();
    }
    return std::nullopt;
}

/// The socket that an entry of a bus address names: a path, or a name after a zero byte.
std::optional<std::string> socketName(std::string_view entry) {
    if (!entry.starts_with("unix:")) return std::nullopt;
    if (auto path = valueInEntry(entry, "path")) return path;
    if (const auto name = valueInEntry(entry, "abstract")) return std::string(1, '\0') + *name;
    return std::nullopt;
}

/// Whether whoever listens at the socket answers the first line of the bus protocol.
bool answers(const std::string& name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, name.data(), name.size());
    const bool isPath = name.front() != '\0';
    const auto length = offsetof(sockaddr_un, sun_path) + name.size() + (isPath ? 1 : 0);

    const FileDescriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // A full backlog fails at once here: nobody has been accepting connections.
    if (connect(connection.number(), reinterpret_cast<sockaddr*>(&address), static_cast<socklen_t>(length)) !=
        0) {
        return false;
    }
    constexpr char greeting[] = "\0AUTH\r\n";
    if (send(connection.number(), greeting, sizeof greeting - 1, MSG_NOSIGNAL) < 0) return false;

    pollfd readable = {connection.number(), POLLIN, 0};
    const gint64 deadline = g_get_monotonic_time() + patienceInMilliseconds * G_TIME_SPAN_MILLISECOND;
    for (;;) {
        const auto left = (deadline - g_get_monotonic_time()) / G_TIME_SPAN_MILLISECOND;
        const int ready = poll(&readable, 1, static_cast<int>(std::max<gint64>(left, 0)));
        if (ready < 0 && errno == EINTR) continue;
        char answer = 0;
        return ready > 0 && read(connection.number(), &answer, 1) == 1;
    }
}

/// Written before there are other threads.
std::string slowAddress;

bool oneAnswers(std::string_view entries) {
    while (!entries.empty()) {
        const auto entry = entries.substr(0, entries.find(';'));
        entries.remove_prefix(std::min(entries.size(), entry.size() + 1));
        const auto name = socketName(entry);
        // Other transports cannot be tried so simply; they are taken at their word.
        if (!name ? !entry.empty() : !name->empty() && answers(*name)) return true;
    }
    return false;
}

} // namespace

const std::string& slowSessionBusAddress() {
    return slowAddress;
}

void doWithoutUnresponsiveSessionBus() {
    // An empty address, unlike a missing one, keeps the libraries from looking for a bus elsewhere or
    // starting one.
    const std::string address = sessionBusAddress();
    if (oneAnswers(address)) return;
    slowAddress = address;
    g_setenv(addressVariable, "", TRUE);
    // The toolkit's accessibility takes it that an application is on the session bus, and fails without.
    g_setenv("GTK_A11Y", "none", FALSE);
}

} // namespace harbrook::gtk
