#include "platform/gtk/foundation/ProcessSetup.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace harbrook::gtk {

void setUpProcess() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // The lowest free number is taken, which is this one.
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF) open("/dev/null", O_RDWR);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
}

} // namespace harbrook::gtk
