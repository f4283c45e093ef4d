#pragma once

#include "app/AppDelegate.h"
#include "app/Globals.h"
#include "platform/recording/Platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace harbrook::tests {

using Lines = std::vector<std::string>;

inline constexpr auto resourceNode = "/opt/harbrook/resources/runtime/node";
inline constexpr auto serverScript = "/opt/harbrook/resources/app/server.js";

/// The shell on a recorded desktop. Nothing runs until the test says so.
class ShellTest : public testing::Test {
protected:
    // Re-executed rather than forked: the double has threads.
    ShellTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    // Before any member goes: a worker that still waits may use them.
    void TearDown() override { platform->shutDown(); }

    /// Puts the interpreter and the script among the resources; launched, the interpreter does what `program`
    /// says.
    void installServer(recording::Program program = {}) {
        platform->files().addExecutable(resourceNode);
        platform->files().addFile(serverScript);
        platform->processes().programs[resourceNode] = std::move(program);
    }

    /// Makes the globals and the delegate, as the entry point does.
    void makeShell() {
        globals = std::make_shared<Globals>(*platform);
        delegate = std::make_shared<AppDelegate>(platform, globals);
        platform->sharedApplication().setDelegate(delegate);
    }

    /// Makes the shell and brings it up to the end of its launch sequence; no worker has run by then.
    void launch() {
        makeShell();
        delegate->applicationDidFinishLaunching();
    }

    /// Brings the shell up with a server on `port`, to the moment when the page has been loaded. The log is
    /// empty by then.
    void launchReady(std::int64_t port = 47545) {
        installServer({.output = {{0.2, "HARBROOK_PORT " + std::to_string(port) + "\n"}}});
        launch();
        platform->advance(0.5);
        ASSERT_EQ(globals->serverPort(), port);
        log().clear();
    }

    /// Lets go of the delegate, as no test of a whole run could.
    void dropDelegate() { delegate.reset(); }

    [[nodiscard]] recording::OperationLog& log() const { return platform->log(); }
    [[nodiscard]] recording::Application& application() const { return platform->application(); }
    [[nodiscard]] recording::URLSession& session() const { return platform->session(); }
    [[nodiscard]] recording::Child& server() const { return *platform->processes().children.back(); }
    [[nodiscard]] recording::StatusItem& statusItem() const { return *platform->systemStatusBar().item(); }

    std::shared_ptr<recording::Platform> platform = std::make_shared<recording::Platform>();
    std::shared_ptr<Globals> globals;
    std::shared_ptr<AppDelegate> delegate;
};

} // namespace harbrook::tests
