#include "platform/Panels.h"
#include "tests/macos/running/scenarios/ScenarioTest.h"

namespace harbrook::running {
namespace {

using Dictionary = Value::Dictionary;

class Page : public Scenario {};

TEST_F(Page, posts_every_message_and_some_that_are_none) {
    play([](Shell& shell) {
        shell.post("drag");
        for (const auto type : {EventType::leftMouseDown, EventType::other}) {
            shell.setCurrentEvent(type);
            shell.post("drag");
        }
        shell.setCurrentEvent({});
        shell.post("zoom");
        shell.post("zoom");
        shell.post(Dictionary{{"k", "title"}, {"v", "shop — Harbrook"}});
        shell.post(Dictionary{{"k", "title"}, {"v", ""}});
        shell.post(Dictionary{{"k", "state"}});
        for (const Value& body :
             {Value(), Value(true), Value(2.5), Value("nonsense"), Value(Value::Array{"zoom", Value()}),
              Value(Dictionary{{"k", "nonsense"}, {"v", Value()}}), Value(Dictionary{{"v", 1.0}})}) {
            shell.post(body);
        }
        shell.post("other", "zoom");
        shell.settle();
        shell.post("quit");
    });
}

TEST_F(Page, chooses_a_folder_or_does_not) {
    play([](Shell& shell) {
        shell.post(Dictionary{{"k", "pickFolder"}});
        shell.endSheet(NSModalResponseOK, "/Users/ada/It's \"quoted\"/\xc3\xa4");
        shell.post(Dictionary{{"k", "pickFolder"}, {"v", "root"}});
        shell.endSheet(NSModalResponseCancel);
        shell.post(Dictionary{{"k", "pickFolder"}, {"v", "root"}});
        shell.endSheet(NSModalResponseOK);
        shell.settle();
    });
}

TEST_F(Page, shows_dialogs) {
    std::vector<std::string> answers;
    play([&](Shell& shell) {
        shell.showAlert("Saved", [&] { answers.emplace_back("alert"); });
        shell.endSheet(NSAlertFirstButtonReturn);
        shell.askConfirmation("Delete?", [&](bool yes) { answers.emplace_back(yes ? "yes" : "no"); });
        shell.endSheet(NSAlertFirstButtonReturn);
        shell.askConfirmation("Delete?", [&](bool yes) { answers.emplace_back(yes ? "yes" : "no"); });
        shell.endSheet(NSAlertSecondButtonReturn);
    });
    EXPECT_THAT(answers, testing::ElementsAre("alert", "yes", "no", "alert", "yes", "no")) << "once on each";
}

struct Destination {
    const char* address;
    bool isAllowed;
};

TEST_F(Page, goes_to_every_kind_of_address) {
    play([](Shell& shell) {
        for (const auto& [address, isAllowed] :
             {Destination{"http://localhost:47545/", true}, Destination{"http://localhost:47545/x?y#z", true},
              Destination{"http://localhost:3000/", false}, Destination{"http://127.0.0.1:47545/", false},
              Destination{"https://example.com/", false}, Destination{"mailto:ada@example.com", false},
              Destination{"about:blank", true}, Destination{"file:///etc/hosts", true},
              Destination{"data:text/html,x", true}}) {
            EXPECT_EQ(shell.navigate(address), isAllowed) << address;
            EXPECT_FALSE(shell.openWindow(address)) << address;
        }
        EXPECT_TRUE(shell.navigate({}));
        EXPECT_FALSE(shell.openWindow({}));
    });
}

TEST_F(Page, is_loaded_again_when_loading_fails) {
    play([](Shell& shell) {
        shell.failProvisionally();
        shell.advance(1.5);
        shell.failLoading();
        shell.advance(1.5);
    });
    EXPECT_EQ(said("loadRequest:").size(), 3U);
}

} // namespace
} // namespace harbrook::running
