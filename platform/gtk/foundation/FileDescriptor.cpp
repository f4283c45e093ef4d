#include "platform/gtk/foundation/FileDescriptor.h"

#include <poll.h>

namespace harbrook::gtk {

bool writeAll(int descriptor, std::string_view data) {
    while (!data.empty()) {
        const ssize_t written = write(descriptor, data.data(), data.size());
        if (written >= 0) {
            data.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // Another program that shares the open file may have made it non-blocking.
            pollfd writable{descriptor, POLLOUT, 0};
            poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

} // namespace harbrook::gtk
