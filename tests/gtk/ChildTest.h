#pragma once

#include "tests/gtk/support/RealPlatform.h"
#include "tests/support/Shared.h"
#include "tests/support/TemporaryFiles.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace harbrook::tests {

/// What only real children can show.
class ChildTest : public testing::Test {
protected:
    /// A child that carries out `command`; not started.
    [[nodiscard]] static std::shared_ptr<Task> shell(const std::string& command) {
        auto task = gtkPlatform().makeTask();
        task->setExecutableURL("/bin/sh");
        task->setArguments({"-c", command});
        return task;
    }

    /// Starts it and gives all that it prints.
    [[nodiscard]] static std::string outputOf(const std::shared_ptr<Task>& task) {
        const auto pipe = gtkPlatform().makePipe();
        task->setStandardOutput(pipe);
        const auto error = task->launchAndReturnError();
        EXPECT_FALSE(error.has_value()) << error->localizedDescription;
        auto output = pipe->fileHandleForReading()->readDataToEndOfFile();
        task->waitUntilExit();
        return output;
    }

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_.path(); }

private:
    TemporaryDirectory directory_;
};

} // namespace harbrook::tests
