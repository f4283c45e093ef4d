#include "tests/macos/running/scenarios/Machine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace harbrook::running {
namespace {

const std::filesystem::path keptLog = HARBROOK_RUNNING "/launch.txt";

std::string contents(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

/// The log, with a blank line before each call of a delegate's.
std::string readable(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines)
        text += (line.starts_with("> ") ? "\n" : "") + line + "\n";
    return text;
}

TEST(Launch, says_to_the_platform_what_it_said_before) {
    Machine machine;
    machine.installServer(47545);
    machine.run([&] { machine.waitForPage(); });
    const auto log = readable(machine.world.log.lines());
    if (std::getenv("HARBROOK_UPDATE_LAUNCH")) std::ofstream(keptLog) << log;
    EXPECT_EQ(log, contents(keptLog)) << "tests/macos/run --update accepts it";
}

} // namespace
} // namespace harbrook::running
