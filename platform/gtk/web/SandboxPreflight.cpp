#include "platform/gtk/web/SandboxPreflight.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <glib.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto variable = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";
constexpr int patienceInMilliseconds = 2000;

enum class Stage { notWanted, running, failedToStart };
Stage stage = Stage::notWanted;
pid_t trial = 0;

/// Waits until the trial ends or patience does; a trial that takes too long is ended.
bool succeeded() {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, trial, 0));
    if (descriptor >= 0) {
        pollfd ended{descriptor, POLLIN, 0};
        while (poll(&ended, 1, patienceInMilliseconds) < 0 && errno == EINTR) {
        }
        if (!(ended.revents & POLLIN)) kill(trial, SIGKILL);
        close(descriptor);
    }
    int status = 0;
    while (waitpid(trial, &status, 0) < 0) {
        if (errno != EINTR) return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

void beginSandboxPreflight() {
    if (g_file_test("/.flatpak-info", G_FILE_TEST_EXISTS)) return;
    // "0" means that the sandbox stays. The variable is made now because adding one to the environment is not
    // safe once there are threads that may read it; changing the value of one that exists is.
    if (g_getenv(variable)) return;
    g_setenv(variable, "0", TRUE);

    // The kinds of isolation that the engine asks of the same program.
    const char* const arguments[] = {"bwrap", "--ro-bind",     "/",    "/",    "--proc", "/proc", "--dev",
                                     "/dev",  "--unshare-all", "true", nullptr};
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
    }
    const int failure =
        posix_spawnp(&trial, "bwrap", &streams, nullptr, const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&streams);
    stage = failure ? Stage::failedToStart : Stage::running;
}

void finishSandboxPreflight() {
    const auto reached = std::exchange(stage, Stage::notWanted);
    if (reached == Stage::notWanted) return;
    if (reached == Stage::running && succeeded()) return;
    g_setenv(variable, "1", TRUE);
}

} // namespace harbrook::gtk
