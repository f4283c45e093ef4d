#include "tests/unit/ShellTest.h"

#include "server/NodeDiscovery.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto shell = "/bin/zsh";
constexpr auto homebrew = "/opt/homebrew/bin/node";
constexpr auto local = "/usr/local/bin/node";

class NodeDiscovery : public ShellTest {
protected:
    /// Starts the search on a worker; it may not have ended yet.
    void search() {
        platform->globalQueue().async([this] {
            node = findNode(*platform);
            ended = true;
        });
        platform->settle();
    }
    std::optional<std::string> found() {
        search();
        platform->advance(1);
        EXPECT_TRUE(ended);
        return node;
    }
    void shellPrints(const std::string& text) {
        platform->processes().programs[shell] = {.output = {{0, text}}, .exitsAfter = 0.1};
    }
    void addExecutables(const std::vector<std::string>& paths) {
        for (const auto& path : paths)
            platform->files().addExecutable(path);
    }

    std::optional<std::string> node;
    bool ended = false;
};

TEST_F(NodeDiscovery, the_resource_interpreter_comes_first_and_no_shell_is_asked) {
    addExecutables({resourceNode, "/usr/bin/node", homebrew, local});
    shellPrints("/usr/bin/node\n");
    EXPECT_EQ(found(), resourceNode);
    EXPECT_THAT(
        log().lines(), ElementsAre(
                           "globalQueue async", "bundle URLForResource: runtime/node",
                           "files isExecutable: " + std::string(resourceNode)));
}

TEST_F(NodeDiscovery, a_resource_interpreter_without_the_execute_permission_is_skipped) {
    platform->files().addFile(resourceNode);
    addExecutables({"/usr/bin/node"});
    shellPrints("/usr/bin/node\n");
    EXPECT_EQ(found(), "/usr/bin/node");
}

TEST_F(NodeDiscovery, the_login_shell_comes_before_the_fixed_places) {
    addExecutables({"/home/ada/.nvm/node", homebrew, local});
    shellPrints("/home/ada/.nvm/node\n");
    EXPECT_EQ(found(), "/home/ada/.nvm/node");
    EXPECT_THAT(
        log().lines(), ElementsAre(
                           "globalQueue async", "bundle URLForResource: runtime/node",
                           "pipe setReadabilityHandler", R"(task launch: /bin/zsh "-lc" "command -v node")",
                           "task waitUntilExit", "files isExecutable: /home/ada/.nvm/node"));
}

TEST_F(NodeDiscovery, the_shell_gets_the_shells_own_environment_directory_and_input) {
    shellPrints("");
    found();
    const auto& child = *platform->processes().children.at(0);
    EXPECT_EQ(child.environment, std::nullopt);
    EXPECT_EQ(child.currentDirectory, std::nullopt);
    EXPECT_FALSE(child.standardInputIsOpen());
    EXPECT_TRUE(child.hasErrorStream()) << "what a profile says on standard error is not shown";
}

class ProbeOutput : public NodeDiscovery, public testing::WithParamInterface<std::string> {};

TEST_P(ProbeOutput, is_trimmed_at_both_ends) {
    addExecutables({"/usr/bin/node"});
    shellPrints(GetParam());
    EXPECT_EQ(found(), "/usr/bin/node");
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ProbeOutput,
    testing::Values(
        "/usr/bin/node", "/usr/bin/node\n", "\r\n\t /usr/bin/node \r\n\n", "\v\f/usr/bin/node\v\f",
        "\xC2\x85\xC2\xA0/usr/bin/node\xC2\xA0\xE2\x80\xA8\xE2\x80\xA9",
        "\xE3\x80\x80/usr/bin/node\xE3\x80\x80"));

class UselessProbeOutput : public NodeDiscovery, public testing::WithParamInterface<std::string> {};

TEST_P(UselessProbeOutput, leaves_the_fixed_places) {
    platform->files().addFile("/usr/bin/not-executable");
    platform->files().addDirectory("/usr/bin/directory");
    addExecutables({"/usr/bin/node", local});
    shellPrints(GetParam());
    EXPECT_EQ(found(), local);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, UselessProbeOutput,
    testing::Values(
        "", "\n", " \n\t ", "node\n", "node: aliased to /usr/bin/node\n", "/usr/bin/not-executable\n",
        "/usr/bin/directory\n", "/no/such/node\n", "Welcome back!\n/usr/bin/node\n", "/usr/bin/node\nbye\n",
        "/usr/bin/node\xFF\n", "\xC3"));

TEST_F(NodeDiscovery, an_empty_answer_is_not_even_looked_at) {
    shellPrints("\n");
    EXPECT_EQ(found(), std::nullopt);
    EXPECT_THAT(
        log().linesOf("files"),
        ElementsAre("files isExecutable: /opt/homebrew/bin/node", "files isExecutable: /usr/local/bin/node"));
}

TEST_F(NodeDiscovery, of_the_fixed_places_homebrew_comes_first) {
    addExecutables({homebrew, local});
    shellPrints("");
    EXPECT_EQ(found(), homebrew);
    EXPECT_THAT(log().linesOf("files"), ElementsAre("files isExecutable: /opt/homebrew/bin/node"));
}

TEST_F(NodeDiscovery, a_login_shell_that_cannot_be_started_leaves_the_fixed_places) {
    addExecutables({local});
    EXPECT_EQ(found(), local);
    EXPECT_THAT(platform->processes().children, IsEmpty());
}

TEST_F(NodeDiscovery, where_there_is_another_login_shell_it_is_asked_the_same) {
    platform->processInfo().setLoginShell("/usr/bin/fish");
    platform->processes().programs["/usr/bin/fish"] = {.output = {{0, "/usr/bin/node\n"}}, .exitsAfter = 0};
    addExecutables({"/usr/bin/node"});
    EXPECT_EQ(found(), "/usr/bin/node");
    EXPECT_THAT(
        log().linesOf("task launch"), ElementsAre(R"(task launch: /usr/bin/fish "-lc" "command -v node")"));
}

TEST_F(NodeDiscovery, a_profile_that_takes_its_time_is_waited_for) {
    platform->processes().programs[shell] = {.output = {{59, "/usr/bin/node\n"}}, .exitsAfter = 60};
    addExecutables({"/usr/bin/node", local});
    search();
    platform->advance(59.5);
    EXPECT_FALSE(ended);
    platform->advance(0.5);
    EXPECT_TRUE(ended);
    EXPECT_EQ(node, "/usr/bin/node");
}

TEST_F(NodeDiscovery, a_profile_that_never_ends_is_waited_for_without_limit) {
    platform->processes().programs[shell] = {};
    addExecutables({local});
    search();
    platform->advance(100'000);
    EXPECT_FALSE(ended);
}

TEST_F(NodeDiscovery, a_profile_that_floods_both_its_streams_does_not_block_the_search) {
    const std::string flood(200'000, 'x');
    platform->processes().programs[shell] = {
        .output = {{0, flood}}, .errorOutput = {{0, flood}}, .exitsAfter = 0.1};
    addExecutables({local});
    EXPECT_EQ(found(), local);
}

} // namespace
} // namespace harbrook::tests
