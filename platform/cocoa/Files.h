#pragma once

#include "platform/Files.h"

namespace harbrook::cocoa {

class FileManager final : public harbrook::FileManager {
public:
    std::filesystem::path homeDirectoryForCurrentUser() override;
    std::filesystem::path currentDirectoryPath() override;
    bool fileExistsAtPath(const std::filesystem::path& path) override;
    bool isExecutableFileAtPath(const std::filesystem::path& path) override;
    std::optional<Error> moveItemAtURL(
        const std::filesystem::path& source, const std::filesystem::path& destination) override;
    std::optional<Error> createDirectoryAtURL(const std::filesystem::path& directory) override;
    bool createFileAtPath(const std::filesystem::path& path) override;
    bool writeAtomically(std::string_view text, const std::filesystem::path& path) override;
};

class Bundle final : public harbrook::Bundle {
public:
    std::optional<std::filesystem::path> URLForResource(
        std::string_view name, std::string_view extension, std::string_view subdirectory) override;
};

} // namespace harbrook::cocoa
