#pragma once

#include "tests/macos/running/World.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace harbrook::running {

/// A machine for one run of the whole program, with files of its own that go with it.
class Machine {
public:
    Machine();
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void addFile(const std::filesystem::path& path, const std::string& content);
    void addProgram(const std::filesystem::path& path, const std::string& script);

    /// Puts Node.js, as a program that announces `port`, to `node`, and the server's script into the bundle.
    void installServer(
        int port,
        const std::filesystem::path& node = "/Applications/Harbrook.app/Contents/Resources/runtime/node");
    /// Until the page has been asked for.
    void waitForPage();

    /// Runs the program from its start to its end; `user` acts while it runs. Afterwards nothing may be
    /// alive.
    void run(const std::function<void()>& user);

    World world;

private:
    void checkThatAllHasGone();
};

} // namespace harbrook::running
