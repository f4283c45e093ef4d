#include "tests/unit/ShellTest.h"

#include "server/ServerLaunch.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto logFile = "/home/ada/.harbrook/logs/server.log";
constexpr auto nodeNotFound = "Node.js was not found. On Intel Macs, install Node.js from nodejs.org "
                              "(or: brew install node), then reopen Harbrook.";
constexpr auto filesMissing = "The app is missing its files. Please reinstall Harbrook.";
constexpr auto didNotStart = "The server did not start. See ~/.harbrook/logs/server.log";

class ServerLaunch : public ShellTest {
protected:
    /// Asks for the server; the launcher has not run yet.
    void start() {
        if (!delegate) makeShell();
        log().clear();
        delegate->startServerIfNeeded([this](bool ok, const std::string& message) {
            EXPECT_TRUE(platform->isMainThread());
            outcomes.push_back((ok ? "ok " : "failed ") + message);
        });
    }

    /// Starts a server that prints only when the test says so.
    void startSilent() {
        installServer();
        start();
        platform->settle();
        ASSERT_EQ(platform->processes().children.size(), 1U);
    }

    void prints(std::string_view text) {
        server().print(text);
        platform->settle();
    }

    [[nodiscard]] std::string logText() { return platform->files().contents(logFile).value_or("(no log)"); }

    std::vector<std::string> outcomes;
};

TEST_F(ServerLaunch, asking_for_it_returns_at_once) {
    installServer();
    start();
    EXPECT_THAT(log().lines(), ElementsAre("globalQueue async"));
    EXPECT_THAT(platform->scheduler().runnableWorkers(), ElementsAre("global 1"));
}

TEST_F(ServerLaunch, the_steps_come_in_this_order) {
    startSilent();
    EXPECT_THAT(
        log().lines(),
        ElementsAre(
            "globalQueue async", "bundle URLForResource: runtime/node",
            "files isExecutable: " + std::string(resourceNode), "bundle URLForResource: app/server.js",
            "files createDirectory: /home/ada/.harbrook/logs", "files createFile: " + std::string(logFile),
            "files openForWriting: " + std::string(logFile), "file seekToEndOfFile",
            "pipe setReadabilityHandler",
            "task launch: " + std::string(resourceNode) + " \"" + serverScript + "\""));
}

TEST_F(ServerLaunch, without_an_interpreter_the_first_message_is_posted_and_nothing_else_is_done) {
    platform->files().addFile(serverScript);
    start();
    platform->settle();
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + nodeNotFound));
    EXPECT_EQ(delegate->server->task(), nullptr);
    EXPECT_THAT(log().linesOf("files create"), IsEmpty());
    EXPECT_THAT(log().linesOf("bundle URLForResource: app"), IsEmpty());
}

TEST_F(ServerLaunch, without_the_script_the_second_message_is_posted_and_nothing_else_is_done) {
    platform->files().addExecutable(resourceNode);
    start();
    platform->settle();
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + filesMissing));
    EXPECT_EQ(delegate->server->task(), nullptr);
    EXPECT_THAT(log().linesOf("files create"), IsEmpty());
}

TEST_F(ServerLaunch, a_process_that_cannot_be_started_gives_the_third_message_with_the_reason) {
    installServer({.launchError = Error{"The file is not a program."}});
    start();
    platform->settle();
    EXPECT_THAT(outcomes, ElementsAre("failed Could not start the server: The file is not a program."));
    EXPECT_EQ(delegate->server->task(), nullptr);
}

TEST_F(ServerLaunch, silence_for_10_seconds_gives_the_fourth_message_and_leaves_the_process_running) {
    startSilent();
    EXPECT_NE(delegate->server->task(), nullptr) << "it is held while it is waited for";
    platform->advance(9.999);
    EXPECT_THAT(outcomes, IsEmpty());
    platform->advance(0.001);
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + didNotStart));
    EXPECT_TRUE(server().isRunning());
    EXPECT_NE(delegate->server->task(), nullptr);
    EXPECT_EQ(server().terminateRequests(), 0);
}

TEST_F(ServerLaunch, the_fourth_message_names_the_home_directory_whatever_the_data_directory_is) {
    platform->processInfo().setVariable("HARBROOK_SHOTS", "1");
    platform->processInfo().setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
    startSilent();
    platform->advance(10);
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + didNotStart));
    EXPECT_TRUE(platform->files().has("/tmp/shots/.harbrook/logs/server.log"));
}

TEST_F(ServerLaunch, a_server_that_exits_at_once_is_waited_for_all_the_same) {
    installServer({.exitsAfter = 0});
    start();
    platform->advance(9.9);
    EXPECT_THAT(outcomes, IsEmpty());
    platform->advance(0.1);
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + didNotStart));
}

TEST_F(ServerLaunch, the_10_seconds_begin_when_the_process_has_started) {
    platform->files().addExecutable("/usr/bin/node");
    platform->files().addFile(serverScript);
    platform->processes().programs["/bin/zsh"] = {.output = {{6, "/usr/bin/node\n"}}, .exitsAfter = 6};
    platform->processes().programs["/usr/bin/node"] = {};
    start();
    platform->advance(15.9);
    EXPECT_THAT(outcomes, IsEmpty());
    platform->advance(0.2);
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + didNotStart));
}

TEST_F(ServerLaunch, an_announcement_in_time_sets_port_and_address_and_then_succeeds) {
    startSilent();
    platform->advance(9.9);
    server().print("starting\ndashboard on HARBROOK_PORT 51234\n");
    platform->scheduler().runWorkers();
    EXPECT_EQ(globals->serverPort(), 51234) << "known before the main thread hears of it";
    EXPECT_EQ(globals->baseURL().absoluteString(), "http://localhost:51234/");
    EXPECT_THAT(outcomes, IsEmpty());
    platform->settle();
    EXPECT_THAT(outcomes, ElementsAre("ok "));
}

TEST_F(ServerLaunch, the_outcome_is_posted_once) {
    startSilent();
    prints("HARBROOK_PORT 1\n");
    prints("HARBROOK_PORT 2\n");
    platform->advance(60);
    server().exit();
    platform->advance(60);
    EXPECT_THAT(outcomes, ElementsAre("ok "));
}

TEST_F(ServerLaunch, the_preferred_port_is_not_assumed) {
    startSilent();
    EXPECT_EQ(globals->serverPort(), 0);
    prints("HARBROOK_PORT 47546\n");
    EXPECT_EQ(globals->serverPort(), 47546);
}

TEST_F(ServerLaunch, an_announcement_split_inside_its_digits_gives_the_port_up_to_there) {
    startSilent();
    prints("HARBROOK_PORT 475");
    prints("46\n");
    EXPECT_EQ(globals->serverPort(), 475);
    EXPECT_EQ(globals->baseURL().absoluteString(), "http://localhost:475/");
}

TEST_F(ServerLaunch, the_first_of_two_announcements_counts) {
    startSilent();
    prints("HARBROOK_PORT 3000\nHARBROOK_PORT 4000\n");
    EXPECT_EQ(globals->serverPort(), 3000);
}

TEST_F(ServerLaunch, a_first_marker_without_a_number_spoils_every_later_one) {
    startSilent();
    prints("HARBROOK_PORT soon\n");
    prints("HARBROOK_PORT 3000\n");
    platform->advance(10);
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + didNotStart));
    EXPECT_EQ(globals->serverPort(), 0);
}

TEST_F(ServerLaunch, port_0_is_a_success_on_port_0_whatever_comes_later) {
    startSilent();
    prints("HARBROOK_PORT 0\n");
    EXPECT_THAT(outcomes, ElementsAre("ok "));
    EXPECT_EQ(globals->serverPort(), 0);
    EXPECT_EQ(globals->baseURL().absoluteString(), "http://localhost:0/");
    prints("more\n");
    prints("HARBROOK_PORT 3000\n");
    platform->advance(20);
    EXPECT_THAT(outcomes, ElementsAre("ok "));
    EXPECT_EQ(globals->serverPort(), 0);
}

TEST_F(ServerLaunch, an_announcement_after_the_10_seconds_changes_nothing) {
    startSilent();
    platform->advance(10.1);
    prints("HARBROOK_PORT 3000\n");
    platform->advance(60);
    EXPECT_THAT(outcomes, ElementsAre(std::string("failed ") + didNotStart));
    EXPECT_EQ(globals->serverPort(), 0);
    EXPECT_EQ(globals->baseURL().absoluteString(), "http://localhost:1/");
    EXPECT_EQ(logText(), "HARBROOK_PORT 3000\n") << "the log goes on";
}

TEST_F(ServerLaunch, everything_that_is_printed_goes_into_the_log_unchanged) {
    startSilent();
    prints("one\n");
    server().printError("oops\n");
    prints(std::string("\0\xFF\r\n", 4));
    prints("HARBROOK_PORT 3000\n");
    prints("later\n");
    EXPECT_EQ(logText(), std::string("one\noops\n\0\xFF\r\nHARBROOK_PORT 3000\nlater\n", 38));
}

TEST_F(ServerLaunch, the_log_of_an_earlier_launch_is_replaced) {
    platform->files().addFile(logFile, "an earlier launch\n");
    startSilent();
    EXPECT_EQ(logText(), "");
    prints("this launch\n");
    EXPECT_EQ(logText(), "this launch\n");
}

TEST_F(ServerLaunch, a_piece_that_ends_inside_a_character_is_logged_but_says_nothing) {
    startSilent();
    prints("HARBROOK_PORT 3000 caf\xC3");
    EXPECT_EQ(globals->serverPort(), 0);
    prints("\xA9\n");
    EXPECT_EQ(globals->serverPort(), 0);
    EXPECT_EQ(logText(), "HARBROOK_PORT 3000 caf\xC3\xA9\n");
    prints("HARBROOK_PORT 4000\n");
    EXPECT_EQ(globals->serverPort(), 4000) << "as if the first had not been printed";
}

TEST_F(ServerLaunch, a_marker_can_join_over_a_piece_that_does_not_decode) {
    startSilent();
    prints("HARBROOK_");
    prints("\xFF\xFE");
    prints("PORT 3000\n");
    EXPECT_EQ(globals->serverPort(), 3000);
}

TEST_F(ServerLaunch, the_child_is_set_up_as_the_contract_says) {
    startSilent();
    EXPECT_EQ(server().executable, resourceNode);
    EXPECT_THAT(server().arguments, ElementsAre(serverScript));
    EXPECT_EQ(server().currentDirectory, "/opt/harbrook/resources/app");
    EXPECT_TRUE(server().standardInputIsOpen());
}

TEST_F(ServerLaunch, its_standard_input_stays_open_until_the_shell_lets_go_of_the_process) {
    startSilent();
    platform->advance(60);
    EXPECT_TRUE(server().standardInputIsOpen());
    dropDelegate();
    EXPECT_FALSE(server().standardInputIsOpen());
}

TEST_F(ServerLaunch, its_environment_is_the_shells_with_the_contracts_entries) {
    platform->processInfo().setEnvironment(
        {{"HOME", "/home/ada"}, {"LANG", "C"}, {"HARBROOK_TOKEN", "stale"}, {"HARBROOK_PORT", "1"}});
    startSilent();
    EXPECT_EQ(
        server().environment, (Environment{
                                  {"HOME", "/home/ada"},
                                  {"LANG", "C"},
                                  {"HARBROOK_PORT", "47545"},
                                  {"HARBROOK_PORT_FALLBACK", "1"},
                                  {"HARBROOK_TOKEN", globals->apiToken},
                                  {"HARBROOK_PARENT", "4242"},
                              }));
}

TEST(ServerEnvironment, has_the_screenshot_home_only_with_the_switch) {
    const auto homeWith = [](const Environment& environment) {
        const auto made = serverEnvironment(environment, "token", 1);
        const auto home = made.find("HOME");
        return home == made.end() ? std::string("(none)") : home->second;
    };
    EXPECT_EQ(homeWith({{"HOME", "/h"}}), "/h");
    EXPECT_EQ(homeWith({}), "(none)");
    EXPECT_EQ(homeWith({{"HOME", "/h"}, {"HARBROOK_SHOTS_HOME", "/s"}}), "/h");
    EXPECT_EQ(homeWith({{"HOME", "/h"}, {"HARBROOK_SHOTS", "1"}}), "/h");
    EXPECT_EQ(homeWith({{"HOME", "/h"}, {"HARBROOK_SHOTS", "true"}, {"HARBROOK_SHOTS_HOME", "/s"}}), "/h");
    EXPECT_EQ(homeWith({{"HOME", "/h"}, {"HARBROOK_SHOTS", "1"}, {"HARBROOK_SHOTS_HOME", "/s"}}), "/s");
    EXPECT_EQ(homeWith({{"HARBROOK_SHOTS", "1"}, {"HARBROOK_SHOTS_HOME", "/s"}}), "/s");
}

TEST_F(ServerLaunch, with_an_unwritable_data_directory_the_server_starts_without_a_log) {
    platform->files().makeUnwritable("/home/ada");
    startSilent();
    EXPECT_FALSE(platform->files().has(logFile));
    server().printError("to nobody\n");
    prints("HARBROOK_PORT 3000\n");
    EXPECT_THAT(outcomes, ElementsAre("ok "));
}

TEST_F(ServerLaunch, a_log_that_cannot_be_opened_is_done_without) {
    platform->files().addFile(logFile, "old");
    platform->files().makeUnwritable(logFile);
    startSilent();
    prints("HARBROOK_PORT 3000\n");
    EXPECT_THAT(outcomes, ElementsAre("ok "));
    EXPECT_EQ(logText(), "old");
}

TEST_F(ServerLaunch, every_launch_starts_a_server_of_its_own_with_the_same_preference) {
    startSilent();
    delegate->startServerIfNeeded([](bool, const std::string&) {});
    platform->settle();
    ASSERT_EQ(platform->processes().children.size(), 2U);
    for (const auto& child : platform->processes().children) {
        EXPECT_EQ(child->environment->at("HARBROOK_PORT"), "47545");
        EXPECT_EQ(child->environment->at("HARBROOK_PORT_FALLBACK"), "1");
    }
}

TEST_F(ServerLaunch, a_second_shell_starts_a_second_server_with_the_same_preference_and_a_token_of_its_own) {
    installServer({.output = {{0.2, "HARBROOK_PORT 47545\n"}}});
    launch();
    platform->advance(0.5);
    const auto otherPlatform = std::make_shared<recording::Platform>();
    otherPlatform->setRandomBytes(std::deque<std::uint8_t>(32, 0x5a));
    otherPlatform->files().addExecutable(resourceNode);
    otherPlatform->files().addFile(serverScript);
    otherPlatform->processes().programs[resourceNode] = {.output = {{0.2, "HARBROOK_PORT 50001\n"}}};
    const auto otherGlobals = std::make_shared<Globals>(*otherPlatform);
    const auto other = std::make_shared<AppDelegate>(otherPlatform, otherGlobals);
    other->applicationDidFinishLaunching();
    otherPlatform->advance(0.5);

    ASSERT_EQ(platform->processes().children.size(), 1U);
    ASSERT_EQ(otherPlatform->processes().children.size(), 1U);
    const auto& first = *server().environment;
    const auto& second = *otherPlatform->processes().children.back()->environment;
    for (const auto* environment : {&first, &second}) {
        EXPECT_EQ(environment->at("HARBROOK_PORT"), "47545");
        EXPECT_EQ(environment->at("HARBROOK_PORT_FALLBACK"), "1");
    }
    EXPECT_NE(first.at("HARBROOK_TOKEN"), second.at("HARBROOK_TOKEN"));
    EXPECT_EQ(globals->serverPort(), 47545);
    EXPECT_EQ(otherGlobals->serverPort(), 50001);
    other->applicationWillTerminate();
    EXPECT_TRUE(server().isRunning()) << "it is the other shell's";
    otherPlatform->shutDown();
}

TEST_F(ServerLaunch, a_launcher_that_outlives_the_delegate_ends_quietly) {
    installServer();
    start();
    platform->settle();
    dropDelegate();
    server().print("HARBROOK_PORT 3000\n");
    EXPECT_NO_THROW(platform->advance(20));
    EXPECT_EQ(globals->serverPort(), 3000);
}

TEST_F(ServerLaunch, output_that_is_handled_before_the_launcher_waits_is_not_missed) {
    installServer({.output = {{0, "HARBROOK_PORT 3000\n"}}});
    platform->scheduler().setWorkerChoice([](std::size_t count) { return count - 1; });
    start();
    platform->settle();
    EXPECT_THAT(outcomes, ElementsAre("ok "));
    EXPECT_EQ(globals->serverPort(), 3000);
}

} // namespace
} // namespace harbrook::tests
