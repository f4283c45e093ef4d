#include "tests/macos/running/scenarios/ScenarioTest.h"

#include <csignal>

namespace harbrook::running {
namespace {

class Life : public Scenario {};

/// By itself it only makes what is kept for good.
TEST_F(Life, first_run) {
    makeCocoaShell()->run([] {});
}

TEST_F(Life, without_node) {
    compare([](Shell& shell) { return shell.run([&] { shell.advance(1); }); });
    EXPECT_EQ(said("Node.js was not found").size(), 1U);
}

TEST_F(Life, with_data_of_an_earlier_version_and_pictures) {
    compare([](Shell& shell) {
        shell.addDataOfEarlierVersion();
        shell.installPictures();
        return shell.run([&] { shell.settle(); });
    });
    EXPECT_EQ(said("moveItemAtURL:").size(), 1U);
}

TEST_F(Life, with_another_home_for_screenshots) {
    compare([](Shell& shell) {
        shell.setVariable("HARBROOK_SHOTS", "1");
        shell.setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
        return shell.run([&] { shell.settle(); });
    });
}

TEST_F(Life, with_node_that_the_login_shell_knows) {
    compare([](Shell& shell) {
        shell.installNodeOfLoginShell(47545);
        return shell.run([&] { shell.waitForPage(); });
    });
}

TEST_F(Life, is_reopened_with_and_without_a_window) {
    play([](Shell& shell) {
        EXPECT_TRUE(shell.reopen(true));
        shell.closeLastWindow();
        EXPECT_TRUE(shell.reopen(false));
        shell.quit();
    });
}

TEST_F(Life, ends_on_a_signal) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        play([&](Shell& shell) {
            shell.receiveSignal(number);
            shell.settle();
        });
    }
}

TEST_F(Life, keeps_the_buttons_in_their_place) {
    play([](Shell& shell) {
        shell.resize({1200, 700});
        shell.resize({100, 100});
        shell.enterFullScreen();
        shell.resize({1920, 1080});
        shell.exitFullScreen();
        shell.settle();
    });
}

TEST_F(Life, answers_screenshot_requests) {
    compare([](Shell& shell) {
        shell.setVariable("HARBROOK_SHOTS", "1");
        shell.installServer(47545);
        return shell.run([&] {
            shell.waitForPage();
            shell.setScripts([](const std::string& script) -> std::optional<Value> {
                if (script.find("#page") == std::string::npos) return std::nullopt;
                return Value(true);
            });
            const std::string name = "com.brackenforge.harbrook.shot";
            shell.notify(name, {{"hash", "#/ports"}, {"token", "7"}, {"click", ".row"}});
            shell.notify(name, {{"token", "8"}, {"number", 1.0}});
            for (int i = 0; i < 6; ++i)
                shell.advance(1);
        });
    });
    EXPECT_EQ(said("shot-ready").size(), 1U);
}

} // namespace
} // namespace harbrook::running
