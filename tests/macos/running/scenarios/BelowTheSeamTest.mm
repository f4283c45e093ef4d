#include "platform/Platform.h"
#include "tests/macos/running/appkit/Application.h"
#include "tests/macos/running/appkit/Drawing.h"
#include "tests/macos/running/appkit/StatusBar.h"
#include "tests/macos/running/appkit/Windows.h"
#include "tests/macos/running/foundation/Invocations.h"
#include "tests/macos/running/foundation/Session.h"
#include "tests/macos/running/scenarios/Machine.h"
#include "tests/macos/running/webkit/Page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What the double never sees: how objects of the platform's become values, and what is drawn.

namespace harbrook::running {
namespace {

class BelowTheSeam : public testing::Test {
protected:
    void run(const std::function<void()>& user) {
        machine_.installServer(47545);
        machine_.run([&] {
            machine_.waitForPage();
            machine_.world.log.clear();
            user();
        });
    }

    [[nodiscard]] std::vector<std::string> said(const std::string& part) const {
        std::vector<std::string> found;
        for (const auto& line : machine_.world.log.lines()) {
            if (line.find(part) != std::string::npos) found.push_back(line);
        }
        return found;
    }

    Machine machine_;
};

TEST_F(BelowTheSeam, a_message_that_no_value_can_hold_is_dropped) {
    run([&] {
        machine_.world.log.clear();
        postMessage("fc", std::nullopt);
        EXPECT_THAT(machine_.world.log.lines(), testing::SizeIs(1))
            << "the handler is called, and nothing else";
    });
}

TEST_F(BelowTheSeam, a_notification_without_information_and_one_with_any_are_told_apart) {
    machine_.world.environment["HARBROOK_SHOTS"] = "1";
    run([&] {
        postFromOutside(text("com.brackenforge.harbrook.shot"), nil);
        NSMutableDictionary* const mixed = [NSMutableDictionary dictionary];
        [mixed setObject:text("#/ports") forKeyedSubscript:text("hash")];
        [mixed setObject:text("dropped") forKeyedSubscript:[NSNumber numberWithLong:3]];
        [mixed setObject:objc_autorelease([[NSObject alloc] init]) forKeyedSubscript:text("token")];
        postFromOutside(text("com.brackenforge.harbrook.shot"), mixed);
        machine_.world.settle();
        EXPECT_THAT(said("location.hash = '#/ports'"), testing::SizeIs(1));
    });
}

TEST_F(BelowTheSeam, an_action_of_an_item_without_object_does_nothing) {
    run([&] {
        const AutoreleasePool pool;
        for (const auto* action : {"openPort:", "openProject:", "toggleProject:"}) {
            SEL const selector = NSSelectorFromString(text(action));
            NSMenuItem* const item = objc_autorelease([[NSMenuItem alloc] initWithTitle:text("")
                                                                                 action:selector
                                                                          keyEquivalent:text("")]);
            forwardAction(NSApp.delegate, selector, item);
            forwardAction(NSApp.delegate, selector, nil);
        }
        EXPECT_THAT(said("openURL:"), testing::IsEmpty());
        EXPECT_THAT(said("dataTask"), testing::IsEmpty());
    });
}

TEST_F(BelowTheSeam, an_answer_may_be_no_http_or_be_cut_short) {
    run([&] {
        machine_.world.advance(3);
        openExchanges().front()->answerWithoutStatus("no snapshot");
        machine_.world.settle();
        machine_.world.advance(3);
        openExchanges().front()->fail("The network connection was lost.", "half a snap");
        machine_.world.settle();
    });
}

TEST_F(BelowTheSeam, both_icons_are_drawn_when_there_are_no_pictures) {
    run([&] {
        const AutoreleasePool pool;
        draw(theStatusItem().button.image);
        EXPECT_THAT(said(" setFill"), testing::Not(testing::IsEmpty()));
        EXPECT_THAT(said(" fill"), testing::Not(testing::IsEmpty()));
        machine_.world.advance(3);
        openExchanges().front()->answer(
            200, R"({"projects":[],"stats":{"running":0,"postgres":0,"redis":0,"containers":0}})");
        machine_.world.settle();
        machine_.world.log.clear();
        draw(theStatusItem().button.image);
        EXPECT_THAT(said(" setStroke"), testing::Not(testing::IsEmpty()));
        EXPECT_THAT(said(" setLineWidth: "), testing::Not(testing::IsEmpty()));
        EXPECT_THAT(said(" stroke"), testing::Not(testing::IsEmpty()));
    });
}

TEST_F(BelowTheSeam, a_colour_is_asked_for_each_appearance_and_one_that_is_neither_counts_as_light) {
    run([&] {
        const AutoreleasePool pool;
        NSColor* const canvas = theWindow().backgroundColor;
        EXPECT_EQ(describeColor(canvas), "#F3F4F0 in light, #161816 in dark");
        EXPECT_EQ(describeColorIn(canvas, "NSAppearanceNameVibrantDark"), "#F3F4F0");
    });
}

TEST_F(BelowTheSeam, what_the_shell_does_not_use_yet_works_too) {
    run([&] {
        const AutoreleasePool pool;
        char name[] = "Harbrook";
        char* arguments[] = {name, nullptr};
        const auto platform = makePlatform(1, arguments);
        platform->labelWithString("x")->setTextColor(Color::blackColor());
        EXPECT_THAT(said("setTextColor: #000000"), testing::SizeIs(1));
        const auto pipe = platform->makePipe();
        pipe->fileHandleForWriting()->writeData("through the pipe");
        EXPECT_EQ(pipe->fileHandleForReading()->availableData(), "through the pipe");
    });
}

TEST(Program, says_its_version) {
    char name[] = "Harbrook";
    char option[] = "--version";
    char* arguments[] = {name, option, nullptr};
    EXPECT_EXIT((void)makePlatform(2, arguments), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace harbrook::running
