#include "tests/gtk/support/RealPlatform.h"
#include "tests/support/TemporaryFiles.h"

#include "platform/gtk/foundation/FileDescriptor.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

namespace harbrook::tests {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Workspace : public testing::Test {
protected:
    void SetUp() override {
        if (underThreadSanitizer) GTEST_SKIP() << threadsOfTheToolkit;
    }
};

TEST_F(Workspace, hands_an_address_to_its_program_and_nothing_else) {
    const TemporaryDirectory directory;
    const auto seen = directory.path() / "seen";
    // It tells its argument, its open files and its environment, all at once.
    writeScript(
        directory.path() / "program", "{ echo \"$1\"; ls -l /proc/$$/fd; env; } >\"$0.part\"\n"
                                      "mv \"$0.part\" " +
                                          seen.string() + "\n");
    const std::filesystem::path applications =
        std::filesystem::path(getenv("XDG_DATA_HOME")) / "applications";
    std::filesystem::create_directories(applications);
    std::ofstream(applications / "contract-test.desktop")
        << "[Desktop Entry]\nType=Application\nName=Test\nMimeType=x-scheme-handler/harbrook-contract;\nExec="
        << (directory.path() / "program").string() << " %u\n";
    std::ofstream(std::filesystem::path(getenv("XDG_CONFIG_HOME")) / "mimeapps.list")
        << "[Default Applications]\nx-scheme-handler/harbrook-contract=contract-test.desktop\n";

    auto& workspace = gtkPlatform().sharedWorkspace();
    setenv("HARBROOK_TEST_LATE", "of the shell alone", 1);
    const auto opened = directory.path() / "left-open";
    const gtk::FileDescriptor careless(open(opened.c_str(), O_RDWR | O_CREAT, S_IRUSR | S_IWUSR));
    EXPECT_TRUE(workspace.openURL(*URL::URLWithString("harbrook-contract://host/path?a=1&b=%202#part")));
    ASSERT_TRUE(runMainLoopUntil([&] { return std::filesystem::exists(seen); }));
    unsetenv("HARBROOK_TEST_LATE");

    const auto text = readFile(seen).value_or("");
    EXPECT_THAT(text, StartsWith("harbrook-contract://host/path?a=1&b=%202#part\n"));
    EXPECT_THAT(text, HasSubstr("0 -> "));
    EXPECT_THAT(text, Not(HasSubstr("left-open")));
    EXPECT_THAT(text, Not(HasSubstr("HARBROOK_TEST_LATE")));
}

TEST_F(Workspace, bears_in_silence_that_nobody_opens_an_address) {
    EXPECT_TRUE(gtkPlatform().sharedWorkspace().openURL(*URL::URLWithString("harbrook-unknown:address")));
    static_cast<void>(runMainLoopUntil([] { return false; }, 0.1));
}

} // namespace

} // namespace harbrook::tests
