#include "tests/unit/ShellTest.h"

#include "app/Globals.h"

namespace harbrook::tests {
namespace {

using testing::IsEmpty;

class GlobalsAtStart : public ShellTest {
protected:
    void setVariable(const std::string& name, const std::string& value) {
        platform->processInfo().setVariable(name, value);
    }
    std::filesystem::path dataDir() { return Globals(*platform).dataDir; }
};

TEST_F(GlobalsAtStart, the_port_is_0_and_the_address_is_the_placeholder_on_port_1) {
    const Globals made(*platform);
    EXPECT_EQ(made.serverPort(), 0);
    EXPECT_EQ(made.baseURL().absoluteString(), "http://localhost:1/");
}

TEST_F(GlobalsAtStart, the_token_is_32_random_bytes_in_lower_case_hexadecimal) {
    std::deque<std::uint8_t> bytes;
    for (int i = 0; i < 32; ++i)
        bytes.push_back(static_cast<std::uint8_t>(i < 16 ? i : 0xf0 + i - 16));
    platform->setRandomBytes(bytes);
    const Globals made(*platform);
    EXPECT_EQ(made.apiToken, "000102030405060708090a0b0c0d0e0ff0f1f2f3f4f5f6f7f8f9fafbfcfdfeff");
    EXPECT_EQ(platform->randomBytesDrawn(), 32);
}

TEST_F(GlobalsAtStart, two_launches_have_different_tokens) {
    const Globals first(*platform);
    const Globals second(*platform);
    EXPECT_NE(first.apiToken, second.apiToken);
    for (const auto& token : {first.apiToken, second.apiToken}) {
        EXPECT_EQ(token.size(), 64U);
        EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos);
    }
}

TEST_F(GlobalsAtStart, the_data_directory_is_in_the_home_directory_and_is_not_made) {
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
    EXPECT_FALSE(platform->files().has("/home/ada/.harbrook"));
    EXPECT_THAT(log().linesOf("files createDirectory"), IsEmpty());
}

TEST_F(GlobalsAtStart, the_screenshot_home_takes_the_place_of_the_home_directory) {
    setVariable("HARBROOK_SHOTS", "1");
    setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
    EXPECT_EQ(dataDir(), "/tmp/shots/.harbrook");
}

TEST_F(GlobalsAtStart, a_screenshot_home_is_taken_against_the_working_directory) {
    platform->files().setCurrentDirectory("/some/where");
    setVariable("HARBROOK_SHOTS", "1");
    for (const auto& [home, expected] : std::map<std::string, std::string>{
             {"shots", "/some/where/shots/.harbrook"},
             {"./a/b", "/some/where/./a/b/.harbrook"},
             {"", "/some/where/.harbrook"},
             {"/tmp/shots", "/tmp/shots/.harbrook"}}) {
        setVariable("HARBROOK_SHOTS_HOME", home);
        EXPECT_EQ(dataDir(), expected);
    }
}

TEST_F(GlobalsAtStart, a_screenshot_home_that_does_not_exist_is_not_checked) {
    setVariable("HARBROOK_SHOTS", "1");
    setVariable("HARBROOK_SHOTS_HOME", "/no/such/place");
    EXPECT_EQ(dataDir(), "/no/such/place/.harbrook");
    EXPECT_FALSE(platform->files().has("/no/such/place"));
}

TEST_F(GlobalsAtStart, the_screenshot_switch_without_a_home_leaves_the_real_home) {
    setVariable("HARBROOK_SHOTS", "1");
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
}

TEST_F(GlobalsAtStart, a_screenshot_home_without_the_switch_is_not_used) {
    setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
}

class ScreenshotSwitch : public GlobalsAtStart, public testing::WithParamInterface<const char*> {};

TEST_P(ScreenshotSwitch, any_value_but_1_leaves_it_off) {
    setVariable("HARBROOK_SHOTS", GetParam());
    setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
    EXPECT_FALSE(screenshotModeIsOn(platform->processInfo().environment()));
}

INSTANTIATE_TEST_SUITE_P(
    Values, ScreenshotSwitch, testing::Values("true", "yes", "01", "1 ", " 1", "11", "0", "", "TRUE"));

TEST_F(GlobalsAtStart, the_directory_of_earlier_versions_is_renamed) {
    platform->files().addFile("/home/ada/.ferncastle/logs/server.log", "old");
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
    EXPECT_EQ(platform->files().contents("/home/ada/.harbrook/logs/server.log"), "old");
    EXPECT_FALSE(platform->files().has("/home/ada/.ferncastle"));
}

TEST_F(GlobalsAtStart, the_renaming_follows_the_screenshot_home) {
    setVariable("HARBROOK_SHOTS", "1");
    setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
    platform->files().addDirectory("/tmp/shots/.ferncastle");
    platform->files().addDirectory("/home/ada/.ferncastle");
    EXPECT_EQ(dataDir(), "/tmp/shots/.harbrook");
    EXPECT_TRUE(platform->files().has("/tmp/shots/.harbrook"));
    EXPECT_TRUE(platform->files().has("/home/ada/.ferncastle"));
}

TEST_F(GlobalsAtStart, nothing_is_renamed_when_both_directories_exist) {
    platform->files().addFile("/home/ada/.ferncastle/mark", "old");
    platform->files().addDirectory("/home/ada/.harbrook");
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
    EXPECT_EQ(platform->files().contents("/home/ada/.ferncastle/mark"), "old");
    EXPECT_THAT(log().linesOf("files move"), IsEmpty());
}

TEST_F(GlobalsAtStart, a_file_with_the_new_name_prevents_the_renaming_too) {
    platform->files().addDirectory("/home/ada/.ferncastle");
    platform->files().addFile("/home/ada/.harbrook", "a file");
    dataDir();
    EXPECT_THAT(log().linesOf("files move"), IsEmpty());
}

TEST_F(GlobalsAtStart, nothing_is_renamed_when_neither_exists) {
    dataDir();
    EXPECT_THAT(log().linesOf("files move"), IsEmpty());
}

TEST_F(GlobalsAtStart, a_renaming_that_fails_is_passed_over) {
    platform->files().addDirectory("/home/ada/.ferncastle");
    platform->files().makeUnwritable("/home/ada");
    EXPECT_EQ(dataDir(), "/home/ada/.harbrook");
    EXPECT_EQ(log().linesOf("files move").size(), 1U) << "there is no second attempt";
    EXPECT_TRUE(platform->files().has("/home/ada/.ferncastle"));
}

} // namespace
} // namespace harbrook::tests
