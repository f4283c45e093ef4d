#include "platform/gtk/foundation/Bundle.h"

namespace harbrook::gtk {

namespace fs = std::filesystem;

std::optional<fs::path> Bundle::URLForResource(
    std::string_view name, std::string_view extension, std::string_view subdirectory) {
    std::string file(name);
    if (!extension.empty()) file.append(".").append(extension);
    fs::path path = directory_;
    if (!subdirectory.empty()) path /= subdirectory;
    path /= file;
    std::error_code ignored;
    if (!fs::exists(path, ignored)) return std::nullopt;
    return path;
}

fs::path resourceDirectory(const fs::path& executable) {
    const fs::path directory = executable.parent_path();
    fs::path installed = directory.parent_path() / "share" / "harbrook";
    std::error_code ignored;
    return fs::is_directory(installed, ignored) ? installed : directory / "resources";
}

fs::path iconDirectory() {
    return currentExecutable().parent_path().parent_path() / "share" / "icons";
}

fs::path currentExecutable() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored);
}

} // namespace harbrook::gtk
