#include "platform/gtk/foundation/FileManager.h"

#include "platform/gtk/foundation/FileDescriptor.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace harbrook::gtk {

namespace {

namespace fs = std::filesystem;

Error describe(const fs::path& path, std::error_code code) {
    return {path.string() + ": " + code.message()};
}

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// A file under a name of its own that goes away again unless it is given its final name.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& destination)
        : path_((destination.parent_path() / ("." + destination.filename().string() + ".XXXXXX")).string()),
          file_(mkostemp(path_.data(), O_CLOEXEC)) {}
    ~TemporaryFile() {
        if (file_ && !renamed_) unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool write(std::string_view text) const { return file_ && writeAll(file_.number(), text); }
    [[nodiscard]] bool rename(const fs::path& destination) {
        renamed_ = std::rename(path_.c_str(), destination.c_str()) == 0;
        return renamed_;
    }

private:
    std::string path_;
    FileDescriptor file_;
    bool renamed_ = false;
};

} // namespace

fs::path FileManager::homeDirectoryForCurrentUser() {
    return g_get_home_dir();
}

fs::path FileManager::currentDirectoryPath() {
    std::error_code ignored;
    return fs::current_path(ignored);
}

bool FileManager::fileExistsAtPath(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

bool FileManager::isExecutableFileAtPath(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && access(path.c_str(), X_OK) == 0;
}

std::optional<Error> FileManager::moveItemAtURL(const fs::path& source, const fs::path& destination) {
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE) == 0) return {};
    // Some file systems cannot rename on that condition; there, the check and the rename are two steps.
    if (errno != EINVAL && errno != ENOSYS) return describe(source, lastError());
    std::error_code code;
    if (fs::exists(fs::symlink_status(destination, code))) {
        return describe(destination, std::make_error_code(std::errc::file_exists));
    }
    fs::rename(source, destination, code);
    if (code) return describe(source, code);
    return {};
}

std::optional<Error> FileManager::createDirectoryAtURL(const fs::path& directory) {
    std::error_code code;
    if (fs::is_directory(directory, code)) return {};
    const fs::path parent = directory.parent_path();
    if (!parent.empty() && parent != directory) {
        if (auto error = createDirectoryAtURL(parent)) return error;
    }
    if (mkdir(directory.c_str(), S_IRWXU) == 0) return {};
    const auto failure = lastError();
    // Somebody else may have made it in between.
    if (fs::is_directory(directory, code)) return {};
    return describe(directory, failure);
}

bool FileManager::createFileAtPath(const fs::path& path) {
    return writeAtomically({}, path);
}

bool FileManager::writeAtomically(std::string_view text, const fs::path& path) {
    TemporaryFile file(path);
    return file.write(text) && file.rename(path);
}

} // namespace harbrook::gtk
