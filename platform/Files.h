#pragma once

#include "platform/Error.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace harbrook {

/// The file system, as far as the shell touches it. Any thread.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// The current user's home directory.
    [[nodiscard]] virtual std::filesystem::path homeDirectoryForCurrentUser() = 0;
    /// The process's working directory, against which relative paths are taken.
    [[nodiscard]] virtual std::filesystem::path currentDirectoryPath() = 0;
    [[nodiscard]] virtual bool fileExistsAtPath(const std::filesystem::path& path) = 0;
    /// Whether `path` is a file that the current user may execute.
    [[nodiscard]] virtual bool isExecutableFileAtPath(const std::filesystem::path& path) = 0;
    /// Renames `source` to `destination`. The error, or none.
    virtual std::optional<Error> moveItemAtURL(
        const std::filesystem::path& source, const std::filesystem::path& destination) = 0;
    /// Makes the directory and whatever is missing above it; one that exists is no error.
    virtual std::optional<Error> createDirectoryAtURL(const std::filesystem::path& directory) = 0;
    /// Makes an empty file, replacing one that exists. Whether that went well.
    virtual bool createFileAtPath(const std::filesystem::path& path) = 0;
    /// Writes `text` so that a reader sees either the old content or the new, never a part. Whether that went
    /// well.
    virtual bool writeAtomically(std::string_view text, const std::filesystem::path& path) = 0;
};

/// The application's own resources.
class Bundle {
public:
    virtual ~Bundle() = default;

    /// The resource `name`.`extension` in the resource folder `subdirectory` (each may be empty), if it is
    /// there. Any thread.
    [[nodiscard]] virtual std::optional<std::filesystem::path> URLForResource(
        std::string_view name, std::string_view extension, std::string_view subdirectory = {}) = 0;
};

} // namespace harbrook
