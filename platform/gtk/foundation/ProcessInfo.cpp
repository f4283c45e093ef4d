#include "platform/gtk/foundation/ProcessInfo.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace harbrook::gtk {

namespace {

bool isProgram(const std::filesystem::path& path) {
    std::error_code ignored;
    return path.is_absolute() && std::filesystem::is_regular_file(path, ignored) &&
           access(path.c_str(), X_OK) == 0;
}

/// What the password database says, or empty.
std::filesystem::path shellOfAccount() {
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return {};
    return found->pw_shell ? found->pw_shell : "";
}

} // namespace

Environment currentEnvironment() {
    Environment environment;
    for (char** position = environ; position && *position; ++position) {
        const std::string_view variable(*position);
        const auto equals = variable.find('=');
        if (equals == std::string_view::npos) continue;
        // Of a name that stands twice the first counts, as for getenv.
        environment.emplace(variable.substr(0, equals), variable.substr(equals + 1));
    }
    return environment;
}

ProcessInfo::ProcessInfo() : environment_(currentEnvironment()) {
    // What a launcher has told this program only: a child would pass for the one that was launched.
    for (const auto* name : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"})
        environment_.erase(name);
}

int ProcessInfo::processIdentifier() {
    return getpid();
}

std::filesystem::path ProcessInfo::loginShell() {
    if (isProgram("/bin/zsh")) return "/bin/zsh";
    const auto own = environment_.find("SHELL");
    if (own != environment_.end() && isProgram(own->second)) return own->second;
    if (auto shell = shellOfAccount(); isProgram(shell)) return shell;
    return "/bin/sh";
}

} // namespace harbrook::gtk
