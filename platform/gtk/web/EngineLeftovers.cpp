#include "platform/gtk/web/EngineLeftovers.h"

#include <sys/types.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace harbrook::gtk {

namespace {

namespace fs = std::filesystem;

/// The program for which the engine made the folder of that name, or none if it made no such folder.
std::optional<pid_t> ownerOf(std::string_view name) {
    constexpr std::string_view prefix = "webkit-";
    if (!name.starts_with(prefix)) return std::nullopt;
    name.remove_prefix(prefix.size());
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.begin(), name.end(), process);
    if (error != std::errc() || end == name.end() || *end != '-' || process <= 0) return std::nullopt;
    return process;
}

bool isGone(pid_t process) {
    return kill(process, 0) != 0 && errno == ESRCH;
}

} // namespace

void removeEngineLeftovers(const fs::path& runtimeFolder) {
    std::error_code ignored;
    std::vector<fs::path> leftovers;
    for (fs::directory_iterator entry(runtimeFolder / ".flatpak", ignored), end; entry != end;
         entry.increment(ignored)) {
        const auto owner = ownerOf(entry->path().filename().native());
        if (owner && isGone(*owner)) leftovers.push_back(entry->path());
    }
    for (const auto& folder : leftovers)
        fs::remove_all(folder, ignored);
}

} // namespace harbrook::gtk
