#include "window/PageMessage.h"

#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

using Kind = PageMessage::Kind;
using Dictionary = Value::Dictionary;

TEST(PageMessage, a_bare_string_is_a_window_command) {
    EXPECT_EQ(pageMessage("drag"), (PageMessage{Kind::drag, ""}));
    EXPECT_EQ(pageMessage("zoom"), (PageMessage{Kind::zoom, ""}));
    EXPECT_EQ(pageMessage("quit"), (PageMessage{Kind::quit, ""}));
}

TEST(PageMessage, a_dictionary_has_a_kind_and_an_argument) {
    EXPECT_EQ(pageMessage(Dictionary{{"k", "title"}, {"v", "Docs"}}), (PageMessage{Kind::title, "Docs"}));
    EXPECT_EQ(
        pageMessage(Dictionary{{"k", "pickFolder"}, {"v", "root"}}), (PageMessage{Kind::pickFolder, "root"}));
    EXPECT_EQ(pageMessage(Dictionary{{"k", "state"}, {"v", "x"}}), (PageMessage{Kind::state, "x"}));
}

TEST(PageMessage, an_argument_that_is_missing_or_no_string_is_empty) {
    EXPECT_EQ(pageMessage(Dictionary{{"k", "title"}}), (PageMessage{Kind::title, ""}));
    for (const auto& argument :
         {Value(4.0), Value(true), Value(), Value(Value::Array{"a"}), Value(Dictionary{{"v", "a"}})}) {
        EXPECT_EQ(pageMessage(Dictionary{{"k", "title"}, {"v", argument}}), (PageMessage{Kind::title, ""}));
    }
}

TEST(PageMessage, other_keys_are_passed_over) {
    EXPECT_EQ(
        pageMessage(Dictionary{{"k", "title"}, {"v", "Docs"}, {"w", 1.0}}),
        (PageMessage{Kind::title, "Docs"}));
}

TEST(PageMessage, each_kind_exists_in_one_form_only) {
    for (const auto* name : {"title", "pickFolder", "state"})
        EXPECT_EQ(pageMessage(name), std::nullopt);
    for (const auto* name : {"drag", "zoom", "quit"}) {
        EXPECT_EQ(pageMessage(Dictionary{{"k", name}}), std::nullopt);
    }
}

TEST(PageMessage, names_are_compared_exactly) {
    for (const auto* name : {"", "Drag", "drag ", " drag", "DRAG", "drags", "unknown"}) {
        EXPECT_EQ(pageMessage(name), std::nullopt) << name;
    }
    for (const auto* name : {"", "Title", "title ", "pickfolder", "STATE", "unknown"}) {
        EXPECT_EQ(pageMessage(Dictionary{{"k", name}}), std::nullopt) << name;
    }
    EXPECT_EQ(pageMessage(std::string("drag\0", 5)), std::nullopt);
}

TEST(PageMessage, a_kind_that_is_missing_or_no_string_is_none) {
    EXPECT_EQ(pageMessage(Dictionary{}), std::nullopt);
    EXPECT_EQ(pageMessage(Dictionary{{"v", "title"}}), std::nullopt);
    EXPECT_EQ(pageMessage(Dictionary{{"K", "title"}}), std::nullopt);
    for (const auto& kind : {Value(1.0), Value(true), Value(), Value(Value::Array{"title"})}) {
        EXPECT_EQ(pageMessage(Dictionary{{"k", kind}}), std::nullopt);
    }
}

TEST(PageMessage, any_other_body_is_none) {
    EXPECT_EQ(pageMessage(Value()), std::nullopt);
    EXPECT_EQ(pageMessage(true), std::nullopt);
    EXPECT_EQ(pageMessage(1.0), std::nullopt);
    EXPECT_EQ(pageMessage(Value::Array{"drag"}), std::nullopt);
    EXPECT_EQ(pageMessage(Value::Array{Dictionary{{"k", "title"}}}), std::nullopt);
}

} // namespace
} // namespace harbrook::tests
