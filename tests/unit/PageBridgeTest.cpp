#include "tests/unit/ShellTest.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Dictionary = Value::Dictionary;

class PageBridge : public ShellTest {
protected:
    void SetUp() override { launchReady(); }

    /// What the shell did about a message from the page, title-bar buttons aside.
    Lines after(const Value& body) {
        log().clear();
        platform->webView()->simulateMessage("fc", body);
        auto lines = log().take();
        std::erase_if(
            lines, [](const std::string& line) { return line.find("setFrame") != std::string::npos; });
        return lines;
    }
    [[nodiscard]] recording::OpenPanel& panel() const {
        return dynamic_cast<recording::OpenPanel&>(*platform->sheets().open.at(0));
    }
    void choose(const std::string& folder) {
        log().clear();
        panel().setChoice(folder);
        platform->sheets().simulateEnd(NSModalResponseOK);
    }
    [[nodiscard]] Lines scripts() const { return log().linesOf("webView evaluateJavaScript"); }
};

TEST_F(PageBridge, a_drag_moves_the_window_while_the_left_button_is_being_pressed) {
    application().setCurrentEvent(EventType::leftMouseDown);
    EXPECT_THAT(after("drag"), ElementsAre("window performWindowDragWithEvent: type 1"));
    EXPECT_EQ(platform->window()->dragEvent(), application().currentEvent().get()) << "that very event";
}

TEST_F(PageBridge, a_drag_does_nothing_during_another_event_or_none) {
    application().setCurrentEvent(EventType::other);
    EXPECT_THAT(after("drag"), IsEmpty());
    application().setCurrentEvent(std::nullopt);
    EXPECT_THAT(after("drag"), IsEmpty());
}

TEST_F(PageBridge, zoom_zooms_the_window) {
    EXPECT_THAT(after("zoom"), ElementsAre("window zoom"));
}

TEST_F(PageBridge, quit_ends_the_application_the_normal_way) {
    EXPECT_THAT(after("quit"), ElementsAre("application terminate", "task terminate", "task waitUntilExit"));
    EXPECT_FALSE(server().isRunning());
}

TEST_F(PageBridge, a_title_becomes_the_windows) {
    EXPECT_THAT(after(Dictionary{{"k", "title"}, {"v", "Docs"}}), ElementsAre("window setTitle: \"Docs\""));
    EXPECT_EQ(platform->window()->title(), "Docs");
}

TEST_F(PageBridge, a_title_that_is_empty_missing_or_no_string_is_the_products_name) {
    const std::string line = "window setTitle: \"Harbrook\"";
    EXPECT_THAT(after(Dictionary{{"k", "title"}, {"v", ""}}), ElementsAre(line));
    EXPECT_THAT(after(Dictionary{{"k", "title"}}), ElementsAre(line));
    EXPECT_THAT(after(Dictionary{{"k", "title"}, {"v", 4.0}}), ElementsAre(line));
}

TEST_F(PageBridge, a_state_message_refreshes_at_once) {
    EXPECT_THAT(
        after(Dictionary{{"k", "state"}}), ElementsAre("session GET http://localhost:47545/api/state"));
}

TEST_F(PageBridge, what_means_nothing_does_nothing) {
    for (const auto& body :
         {Value("state"), Value("title"), Value("unknown"), Value(""), Value(1.0), Value(true), Value(),
          Value(Value::Array{"zoom"}), Value(Dictionary{}), Value(Dictionary{{"v", "Docs"}}),
          Value(Dictionary{{"k", 1.0}}), Value(Dictionary{{"k", "zoom"}}),
          Value(Dictionary{{"k", "unknown"}})}) {
        EXPECT_THAT(after(body), IsEmpty());
    }
}

TEST_F(PageBridge, messages_of_another_channel_are_passed_over) {
    log().clear();
    for (const auto* name : {"", "FC", "fc ", "other"})
        delegate->didReceiveScriptMessage({name, "zoom"});
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(PageBridge, the_folder_panel_is_set_up_as_a_sheet_of_the_window) {
    EXPECT_THAT(
        after(Dictionary{{"k", "pickFolder"}}),
        ElementsAre(
            "openPanel init", "openPanel setCanChooseDirectories: true", "openPanel setCanChooseFiles: false",
            "openPanel setAllowsMultipleSelection: false", "openPanel setCanCreateDirectories: true",
            "openPanel setPrompt: \"Choose\"",
            "openPanel setMessage: \"Choose a folder that contains your projects.\"",
            "openPanel setDirectoryURL: /home/ada", "openPanel beginSheetModalForWindow"));
}

TEST_F(PageBridge, a_target_changes_the_panels_message) {
    EXPECT_THAT(
        after(Dictionary{{"k", "pickFolder"}, {"v", "root"}}),
        testing::Contains("openPanel setMessage: \"Choose a folder.\""));
}

TEST_F(PageBridge, the_panel_starts_in_the_home_directory_every_time) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(
            after(Dictionary{{"k", "pickFolder"}}),
            testing::Contains("openPanel setDirectoryURL: /home/ada"));
        choose("/srv/elsewhere");
    }
}

TEST_F(PageBridge, a_choice_is_reported_to_the_page_with_its_target) {
    after(Dictionary{{"k", "pickFolder"}, {"v", "it's \"the\" root"}});
    choose("/Users/a b/caf\xC3\xA9\"");
    EXPECT_THAT(
        scripts(),
        ElementsAre(
            "webView evaluateJavaScript: window.onFolderPicked && "
            "window.onFolderPicked(\"\\/Users\\/a b\\/caf\xC3\xA9\\\"\", \"it's \\\"the\\\" root\")"));
}

TEST_F(PageBridge, a_choice_without_a_target_is_reported_with_an_empty_one) {
    after(Dictionary{{"k", "pickFolder"}});
    choose("/srv");
    EXPECT_THAT(
        scripts(),
        ElementsAre(
            R"(webView evaluateJavaScript: window.onFolderPicked && window.onFolderPicked("\/srv", ""))"));
}

TEST_F(PageBridge, a_cancelled_choice_is_not_reported) {
    after(Dictionary{{"k", "pickFolder"}});
    panel().setChoice("/srv");
    platform->sheets().simulateEnd(NSModalResponseCancel);
    EXPECT_THAT(scripts(), IsEmpty());
}

TEST_F(PageBridge, an_ok_without_a_choice_is_not_reported) {
    after(Dictionary{{"k", "pickFolder"}});
    platform->sheets().simulateEnd(NSModalResponseOK);
    EXPECT_THAT(scripts(), IsEmpty());
}

TEST_F(PageBridge, a_choice_is_not_reported_when_the_delegate_is_gone) {
    after(Dictionary{{"k", "pickFolder"}});
    const auto view = platform->webView();
    dropDelegate();
    choose("/srv");
    EXPECT_THAT(scripts(), IsEmpty());
}

TEST_F(PageBridge, a_second_panel_may_be_asked_for_while_one_is_open) {
    after(Dictionary{{"k", "pickFolder"}, {"v", "first"}});
    after(Dictionary{{"k", "pickFolder"}, {"v", "second"}});
    ASSERT_EQ(platform->sheets().open.size(), 2U);
    choose("/a");
    EXPECT_THAT(scripts(), ElementsAre(testing::HasSubstr(R"("\/a", "first")")));
    choose("/b");
    EXPECT_THAT(scripts(), ElementsAre(testing::HasSubstr(R"("\/b", "second")")));
}

} // namespace
} // namespace harbrook::tests
