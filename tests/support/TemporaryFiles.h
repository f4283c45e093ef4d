#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace harbrook::tests {

/// A new empty directory, gone with the object.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// What a file holds, or none.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path);
/// Puts a shell script there that may be run.
void writeScript(const std::filesystem::path& path, const std::string& text);

} // namespace harbrook::tests
