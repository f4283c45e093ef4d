#pragma once

#include "tests/macos/running/scenarios/Operations.h"
#include "tests/macos/running/scenarios/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace harbrook::running {

/// A scenario runs on the double and on Cocoa; the messages must be those that the operations stand for.
class Scenario : public testing::Test {
protected:
    using Story = std::function<void(Shell&)>;

    /// Plays `story` once the page is there, with a server on port 47545.
    void play(const Story& story) {
        compare([&](Shell& shell) {
            shell.installServer(47545);
            return shell.run([&] {
                shell.waitForPage();
                story(shell);
            });
        });
    }

    void compare(const std::function<std::vector<std::string>(Shell&)>& run) {
        const auto operations = run(*makeDoubleShell());
        messages_ = run(*makeCocoaShell());
        EXPECT_EQ(difference(operations, messages_), "");
    }

    /// What was said to the platform, and had `part` in it.
    [[nodiscard]] std::vector<std::string> said(const std::string& part) const {
        std::vector<std::string> found;
        for (const auto& line : messages_) {
            if (line.find(part) != std::string::npos) found.push_back(line);
        }
        return found;
    }

private:
    std::vector<std::string> messages_;
};

} // namespace harbrook::running
