#pragma once

#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/recording/World.h"

#include <map>
#include <memory>
#include <set>

namespace harbrook::recording {

/// A file system in memory. Paths are plain names: no links, no `..`.
class FileManager final : public harbrook::FileManager, public std::enable_shared_from_this<FileManager> {
public:
    explicit FileManager(WorldPtr world) : world_(std::move(world)) {}

    std::filesystem::path homeDirectoryForCurrentUser() override { return home_; }
    std::filesystem::path currentDirectoryPath() override { return currentDirectory_; }
    bool fileExistsAtPath(const std::filesystem::path& path) override;
    bool isExecutableFileAtPath(const std::filesystem::path& path) override;
    std::optional<Error> moveItemAtURL(
        const std::filesystem::path& source, const std::filesystem::path& destination) override;
    std::optional<Error> createDirectoryAtURL(const std::filesystem::path& directory) override;
    bool createFileAtPath(const std::filesystem::path& path) override;
    bool writeAtomically(std::string_view text, const std::filesystem::path& path) override;

    // For the test.

    void setHome(std::filesystem::path home) { home_ = std::move(home); }
    void setCurrentDirectory(std::filesystem::path directory) { currentDirectory_ = std::move(directory); }
    /// Puts a directory there, with those above it.
    void addDirectory(const std::filesystem::path& path);
    /// Puts a file there, with the directories above it.
    void addFile(const std::filesystem::path& path, std::string content = {});
    void addExecutable(const std::filesystem::path& path);
    /// From now on nothing can be made, moved or written at or below `path`.
    void makeUnwritable(const std::filesystem::path& path) { unwritable_.insert(path); }
    /// Whether something is there, without a line in the log.
    [[nodiscard]] bool has(const std::filesystem::path& path) const { return nodes_.contains(path); }
    /// What the file holds, or none if there is no such file.
    [[nodiscard]] std::optional<std::string> contents(const std::filesystem::path& path) const;

    /// A handle at the start of an existing file, or null.
    [[nodiscard]] std::shared_ptr<FileHandle> openForWriting(const std::filesystem::path& path);

private:
    struct Node {
        bool isDirectory = false;
        bool isExecutable = false;
        std::string content;
    };
    class WritingHandle;

    [[nodiscard]] bool writable(const std::filesystem::path& path) const;
    [[nodiscard]] bool isDirectory(const std::filesystem::path& path) const;
    [[nodiscard]] bool isBelowFile(const std::filesystem::path& path) const;
    [[nodiscard]] bool canHold(const std::filesystem::path& path) const;

    WorldPtr world_;
    std::filesystem::path home_ = "/home/ada";
    std::filesystem::path currentDirectory_ = "/";
    // Nodes are shared with the handles that are open on them, which outlive a replaced name.
    std::map<std::filesystem::path, std::shared_ptr<Node>> nodes_;
    std::set<std::filesystem::path> unwritable_;
};

/// The resources are whatever the file system holds below one directory.
class Bundle final : public harbrook::Bundle {
public:
    Bundle(WorldPtr world, std::shared_ptr<FileManager> files)
        : world_(std::move(world)), files_(std::move(files)) {}

    std::optional<std::filesystem::path> URLForResource(
        std::string_view name, std::string_view extension, std::string_view subdirectory) override;

    static constexpr auto root = "/opt/harbrook/resources";

private:
    WorldPtr world_;
    std::shared_ptr<FileManager> files_;
};

/// Reads as empty and swallows what is written.
class NullDevice final : public FileHandle {
public:
    std::string availableData() override { return {}; }
    std::string readDataToEndOfFile() override { return {}; }
    void writeData(std::string_view) override {}
    void seekToEndOfFile() override {}
    void setReadabilityHandler(ReadabilityHandler) override {}
};

} // namespace harbrook::recording
