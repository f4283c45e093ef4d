#pragma once

#include "platform/Files.h"

namespace harbrook::gtk {

/// What it makes is for the user alone (directories 0700, files 0600): the server's log shows what the user
/// works on, and may show secrets of the projects it runs.
class FileManager final : public harbrook::FileManager {
public:
    /// HOME, or what the password database says.
    std::filesystem::path homeDirectoryForCurrentUser() override;
    std::filesystem::path currentDirectoryPath() override;
    bool fileExistsAtPath(const std::filesystem::path& path) override;
    bool isExecutableFileAtPath(const std::filesystem::path& path) override;
    /// A destination that exists is an error.
    std::optional<Error> moveItemAtURL(
        const std::filesystem::path& source, const std::filesystem::path& destination) override;
    std::optional<Error> createDirectoryAtURL(const std::filesystem::path& directory) override;
    /// Puts a new file in the place of the old one, which keeps its content for whoever has it open. A
    /// symbolic link is replaced, not followed, so that no other file is emptied by way of it.
    bool createFileAtPath(const std::filesystem::path& path) override;
    bool writeAtomically(std::string_view text, const std::filesystem::path& path) override;
};

} // namespace harbrook::gtk
