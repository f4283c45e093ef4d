#pragma once

#include "platform/Error.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harbrook {

using Environment = std::map<std::string, std::string>;

/// The shell's own process. Any thread.
class ProcessInfo {
public:
    virtual ~ProcessInfo() = default;
    /// The environment the process was started with.
    [[nodiscard]] virtual Environment environment() = 0;
    [[nodiscard]] virtual int processIdentifier() = 0;
    /// The shell program that reads the user's login profile: "/bin/zsh" on macOS and wherever it exists,
    /// else the user's own shell, else "/bin/sh".
    [[nodiscard]] virtual std::filesystem::path loginShell() = 0;
};

/// An open file or one end of a pipe, closed when the last reference goes. Any thread, one at a time.
class FileHandle {
public:
    using ReadabilityHandler = std::function<void(FileHandle&)>;

    virtual ~FileHandle() = default;

    /// What can be read now; blocks while there is nothing, and is empty at end of file.
    [[nodiscard]] virtual std::string availableData() = 0;
    /// Everything up to end of file; blocks until then.
    [[nodiscard]] virtual std::string readDataToEndOfFile() = 0;
    /// Writes all of `data`. An error ends silently.
    virtual void writeData(std::string_view data) = 0;
    virtual void seekToEndOfFile() = 0;
    /// Has `handler` called, on a queue of the platform's, each time data or end of file is available. The
    /// calls for one handle follow each other and never overlap. The handle and its handler live until end of
    /// file even if nobody else keeps the handle.
    virtual void setReadabilityHandler(ReadabilityHandler handler) = 0;
};

/// A pipe between the shell and a child.
class Pipe {
public:
    virtual ~Pipe() = default;
    [[nodiscard]] virtual std::shared_ptr<FileHandle> fileHandleForReading() = 0;
    [[nodiscard]] virtual std::shared_ptr<FileHandle> fileHandleForWriting() = 0;
};

/// A child process: set up, launched once, then watched. It keeps its pipes for as long as it lives, and
/// inherits nothing of the shell's open files beyond its three streams. Streams that were not set are the
/// shell's own.
class Task {
public:
    virtual ~Task() = default;

    virtual void setExecutableURL(std::filesystem::path executable) = 0;
    virtual void setArguments(std::vector<std::string> arguments) = 0;
    virtual void setCurrentDirectoryURL(std::filesystem::path directory) = 0;
    /// Replaces the environment that the child would inherit.
    virtual void setEnvironment(Environment environment) = 0;
    virtual void setStandardInput(std::shared_ptr<Pipe> pipe) = 0;
    virtual void setStandardOutput(std::shared_ptr<Pipe> pipe) = 0;
    virtual void setStandardError(std::shared_ptr<Pipe> pipe) = 0;
    virtual void setStandardError(std::shared_ptr<FileHandle> handle) = 0;

    /// Starts the child. The error, or none. Once it has started, the shell keeps only its own ends of the
    /// pipes.
    virtual std::optional<Error> launchAndReturnError() = 0;
    /// Sends the terminate request (SIGTERM). Nothing happens if the child has already exited.
    virtual void terminate() = 0;
    /// Blocks until the child has exited, without limit.
    virtual void waitUntilExit() = 0;
};

} // namespace harbrook
