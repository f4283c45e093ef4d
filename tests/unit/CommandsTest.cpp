#include "tests/unit/ShellTest.h"

#include "app/Product.h"

namespace harbrook::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::uint32_t command = NSEventModifierFlagCommand;
constexpr std::uint32_t shift = NSEventModifierFlagShift;
constexpr std::uint32_t control = NSEventModifierFlagControl;

constexpr auto front = "window makeKeyAndOrderFront";
constexpr auto active = "application activateIgnoringOtherApps: true";

class Commands : public ShellTest {
protected:
    void SetUp() override { launchReady(); }

    Lines afterChoosing(const std::vector<std::string>& titles) {
        log().clear();
        application().simulateChoice(titles);
        return operations();
    }
    Lines afterPressing(const std::string& key, std::uint32_t modifiers) {
        log().clear();
        EXPECT_TRUE(application().simulateKey(key, modifiers));
        return operations();
    }
    /// The log without the title-bar buttons, which a window that comes forward may place again.
    Lines operations() {
        auto lines = log().take();
        std::erase_if(
            lines, [](const std::string& line) { return line.find("setFrame") != std::string::npos; });
        return lines;
    }
};

struct ViewCommand {
    std::vector<std::string> titles;
    const char* key;
    const char* hash;
};

std::ostream& operator<<(std::ostream& out, const ViewCommand& choice) {
    return out << choice.titles.back();
}

class ViewCommands : public Commands, public testing::WithParamInterface<ViewCommand> {};

TEST_P(ViewCommands, show_the_window_and_move_the_page) {
    const auto script = std::string("webView evaluateJavaScript: location.hash = '") + GetParam().hash + "'";
    EXPECT_THAT(afterChoosing(GetParam().titles), ElementsAre(front, active, script));
    if (*GetParam().key) {
        platform->window()->simulateClose();
        EXPECT_THAT(afterPressing(GetParam().key, command), ElementsAre(front, active, script));
        EXPECT_TRUE(platform->window()->isVisible());
    }
    EXPECT_EQ(platform->webView()->loads().size(), 1U) << "no URL is loaded for it";
}

INSTANTIATE_TEST_SUITE_P(
    Table, ViewCommands,
    testing::Values(
        ViewCommand{{"View", "Dashboard"}, "1", "#/"}, ViewCommand{{"View", "Services"}, "2", "#/services"},
        ViewCommand{{"View", "Docker"}, "3", "#/docker"}, ViewCommand{{"View", "Ports"}, "4", "#/ports"},
        ViewCommand{{"", "Settings…"}, ",", "#/settings"},
        ViewCommand{{"", "Support Harbrook…"}, "", "#/about"},
        ViewCommand{{"Help", "About & Support"}, "", "#/about"}));

TEST_F(Commands, a_hash_goes_into_the_script_as_it_is) {
    log().clear();
    delegate->go("#/a'b\"\\");
    EXPECT_THAT(
        operations(), ElementsAre(front, active, "webView evaluateJavaScript: location.hash = '#/a'b\"\\'"));
}

TEST_F(Commands, reload_does_not_bring_the_window_forward) {
    EXPECT_THAT(afterChoosing({"View", "Reload"}), ElementsAre("webView reload"));
    EXPECT_THAT(afterPressing("r", command), ElementsAre("webView reload"));
}

TEST_F(Commands, the_sidebar_command_presses_the_pages_own_button_and_leaves_the_window_where_it_is) {
    const std::string script = "webView evaluateJavaScript: document.getElementById('toggleSide').click()";
    EXPECT_THAT(afterChoosing({"View", "Show or Hide Sidebar"}), ElementsAre(script));
    EXPECT_THAT(afterPressing("s", control | command), ElementsAre(script));
    EXPECT_FALSE(application().simulateKey("s", command));
}

TEST_F(Commands, check_for_updates_shows_the_window_and_leaves_the_rest_to_the_page) {
    EXPECT_THAT(
        afterChoosing({"", "Check for Updates…"}),
        ElementsAre(front, active, "webView evaluateJavaScript: window.openUpdate && window.openUpdate()"));
    platform->advance(0.5);
    EXPECT_THAT(log().linesOf("session"), IsEmpty());
}

TEST_F(Commands, the_website_opens_in_the_browser) {
    EXPECT_THAT(
        afterChoosing({"Help", "Harbrook Website"}),
        ElementsAre("workspace openURL: " + std::string(product::website)));
    const auto url = URL::URLWithString(product::website).value();
    EXPECT_EQ(url.scheme(), "https");
    EXPECT_TRUE(url.host());
    EXPECT_EQ(url.absoluteString(), "https://" + *url.host()) << "there is no path";
}

TEST_F(Commands, support_mail_is_a_new_message_with_its_subject) {
    EXPECT_THAT(
        afterChoosing({"Help", "Email Support"}),
        ElementsAre(AllOf(
            StartsWith("workspace openURL: mailto:"), testing::HasSubstr("@"),
            testing::EndsWith("?subject=Harbrook"))));
}

TEST_F(Commands, the_server_log_opens_whether_or_not_it_exists) {
    const std::string line = "workspace openURL: file:///home/ada/.harbrook/logs/server.log";
    EXPECT_THAT(afterChoosing({"Help", "Show Server Log"}), ElementsAre(line));
    platform->sharedWorkspace().setHasPrograms(false);
    EXPECT_THAT(afterChoosing({"Help", "Show Server Log"}), ElementsAre(line));
}

TEST_F(Commands, about_shows_the_panel_with_credits_and_activates) {
    EXPECT_THAT(
        afterChoosing({"", "About Harbrook"}),
        ElementsAre("application orderFrontStandardAboutPanel", active));
    const auto& credits = application().aboutPanel().value().credits.value();
    EXPECT_EQ(credits.font, Font::systemFontOfSize(11));
    ASSERT_TRUE(std::holds_alternative<SystemColor>(credits.foregroundColor.source()));
    EXPECT_EQ(std::get<SystemColor>(credits.foregroundColor.source()), SystemColor::secondaryLabelColor);
}

TEST_F(Commands, the_credits_are_a_sentence_a_blank_line_and_four_lines) {
    afterChoosing({"", "About Harbrook"});
    const auto& text = application().aboutPanel().value().credits.value().string;
    std::vector<std::string> lines(1);
    for (const char character : text) {
        if (character == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += character;
        }
    }
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_TRUE(lines[0].ends_with('.'));
    EXPECT_EQ(lines[0].find(". "), std::string::npos) << "a single sentence";
    EXPECT_EQ(lines[1], "");
    for (std::size_t i = 2; i < 6; ++i)
        EXPECT_NE(lines[i], "");
    EXPECT_NE(lines[5].find(URL::URLWithString(product::website)->host().value()), std::string::npos);
    EXPECT_NE(lines[5].find('@'), std::string::npos);
    EXPECT_EQ(text.find('\r'), std::string::npos);
}

TEST_F(Commands, undo_and_redo_go_to_whoever_has_the_focus) {
    EXPECT_THAT(afterPressing("z", command), ElementsAre("responderChain undo:"));
    EXPECT_THAT(afterPressing("z", shift | command), ElementsAre("responderChain redo:"));
}

TEST_F(Commands, quit_goes_through_the_normal_termination) {
    EXPECT_THAT(
        afterPressing("q", command),
        ElementsAre("application terminate", "task terminate", "task waitUntilExit"));
}

TEST_F(Commands, the_menu_is_never_built_again) {
    platform->advance(60);
    EXPECT_THAT(log().linesOf("application setMainMenu"), IsEmpty());
}

TEST_F(Commands, the_delegate_responds_to_every_action_that_is_its_own_and_to_no_other) {
    for (const auto* selector :
         {"showAbout", "checkUpdates", "goSettings", "goAbout", "toggleSidebar", "reload", "goHome",
          "goServices", "goDocker", "goPorts", "openWebsite", "emailDeveloper", "openLog", "openFromMenu",
          "openPort:", "openProject:", "toggleProject:"}) {
        EXPECT_TRUE(delegate->respondsToSelector(selector)) << selector;
    }
    for (const auto* selector :
         {"", "undo:", "terminate:", "openPort", "goHome:", "gohome", "refreshStatus", "hide:"}) {
        EXPECT_FALSE(delegate->respondsToSelector(selector)) << selector;
        log().clear();
        delegate->performSelector(selector, {});
        EXPECT_THAT(log().lines(), IsEmpty()) << selector;
    }
}

class CommandsBeforeThePage : public ShellTest {};

TEST_F(CommandsBeforeThePage, act_at_once_and_are_not_queued) {
    launch();
    log().clear();
    application().simulateChoice({"View", "Ports"});
    EXPECT_THAT(
        log().linesOf("webView"), ElementsAre("webView evaluateJavaScript: location.hash = '#/ports'"));
    platform->settle();
    EXPECT_EQ(log().linesOf("webView").size(), 1U);
}

TEST_F(CommandsBeforeThePage, without_a_web_view_the_process_stops) {
    makeShell();
    EXPECT_DEATH(delegate->reload(), "missing");
    EXPECT_DEATH(delegate->toggleSidebar(), "missing");
    EXPECT_DEATH(delegate->goHome(), "missing");
}

TEST_F(CommandsBeforeThePage, without_a_window_or_a_web_view_checking_for_updates_stops_the_process) {
    launch();
    const auto window = std::exchange(delegate->window, nullptr);
    EXPECT_DEATH(delegate->checkUpdates(), "missing");
    delegate->window = window;
    delegate->webView = nullptr;
    EXPECT_DEATH(delegate->checkUpdates(), "missing");
}

} // namespace
} // namespace harbrook::tests
