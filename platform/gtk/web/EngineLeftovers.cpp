#include "platform/gtk/web/EngineLeftovers.h"

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace harbrook::gtk {

namespace {

namespace fs = std::filesystem;

/// The process whose number is the whole of `name`, or 0.
pid_t processNamed(std::string_view name) {
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.begin(), name.end(), process);
    return error == std::errc() && end == name.end() && process > 0 ? process : 0;
}

bool isGone(pid_t process) {
    return kill(process, 0) != 0 && errno == ESRCH;
}

std::vector<fs::path> entriesOf(const fs::path& folder) {
    std::vector<fs::path> entries;
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; entry != end; entry.increment(ignored))
        entries.push_back(entry->path());
    return entries;
}

/// The process for which the engine made the folder of that name, as it writes it, or none.
std::string_view ownerOf(std::string_view name) {
    constexpr std::string_view prefix = "webkit-";
    if (!name.starts_with(prefix)) return {};
    name.remove_prefix(prefix.size());
    const auto dash = name.find('-');
    return dash == std::string_view::npos ? std::string_view() : name.substr(0, dash);
}

} // namespace

void removeEngineLeftovers(const fs::path& runtimeFolder) {
    std::error_code ignored;
    const auto starts = runtimeFolder / "harbrook";
    fs::create_directory(starts, ignored);
    const std::ofstream mark(starts / std::to_string(getpid()));

    std::set<std::string, std::less<>> gone;
    for (const auto& start : entriesOf(starts)) {
        const auto process = processNamed(start.filename().native());
        if (process != 0 && isGone(process)) gone.insert(start.filename());
    }
    for (const auto& folder : entriesOf(runtimeFolder / ".flatpak")) {
        if (gone.contains(ownerOf(folder.filename().native()))) fs::remove_all(folder, ignored);
    }
    for (const auto& name : gone)
        fs::remove(starts / name, ignored);
}

} // namespace harbrook::gtk
