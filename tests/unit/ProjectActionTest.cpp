#include "status/ProjectAction.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace harbrook::tests {
namespace {

TEST(ProjectAction, is_a_verb_and_a_path) {
    EXPECT_EQ(projectAction("stop\n/a/b"), (ProjectAction{"stop", "/a/b"}));
    EXPECT_EQ(projectAction("start\n/a/b"), (ProjectAction{"start", "/a/b"}));
}

TEST(ProjectAction, is_split_once_so_that_a_path_keeps_its_line_feeds) {
    EXPECT_EQ(projectAction("start\n/a\nb"), (ProjectAction{"start", "/a\nb"}));
    EXPECT_EQ(projectAction("start\n/a\n"), (ProjectAction{"start", "/a\n"}));
    EXPECT_EQ(projectAction("start\n\n/a"), (ProjectAction{"start", "\n/a"}));
}

TEST(ProjectAction, empty_pieces_are_dropped) {
    EXPECT_EQ(projectAction("start\n"), std::nullopt);
    EXPECT_EQ(projectAction("\n/a"), std::nullopt);
    EXPECT_EQ(projectAction("\nstart\n/a"), (ProjectAction{"start", "/a"}));
    EXPECT_EQ(projectAction("\n\nstart\n/a"), (ProjectAction{"start", "/a"}));
}

TEST(ProjectAction, needs_both_pieces) {
    for (const auto* text : {"", "\n", "\n\n\n", "start", "start/a"}) {
        EXPECT_EQ(projectAction(text), std::nullopt) << text;
    }
}

TEST(PercentEncoding, leaves_letters_marks_and_numbers_of_every_script) {
    for (const std::string text :
         {"abcXYZ019", "caf\xC3\xA9", "e\xCC\x81" /* a letter and a combining mark */, "\xE5\xAD\x97",
          "\xD9\xA3" /* an Arabic-Indic digit */, "\xE0\xA4\xBF" /* a vowel sign */,
          "\xE2\x85\xA7" /* a Roman numeral */, "\xC2\xB2" /* superscript two */,
          "\xF0\x9D\x94\xB8" /* a mathematical letter */}) {
        EXPECT_EQ(percentEncodedAlphanumeric(text), text);
    }
}

TEST(PercentEncoding, encodes_everything_else_as_utf_8) {
    EXPECT_EQ(percentEncodedAlphanumeric("/Users/me/my-app"), "%2FUsers%2Fme%2Fmy%2Dapp");
    EXPECT_EQ(percentEncodedAlphanumeric("/Users/me/my app"), "%2FUsers%2Fme%2Fmy%20app");
    EXPECT_EQ(percentEncodedAlphanumeric("._-~'\"%\n"), "%2E%5F%2D%7E%27%22%25%0A");
    EXPECT_EQ(percentEncodedAlphanumeric("\xF0\x9F\x98\x80"), "%F0%9F%98%80");
    EXPECT_EQ(percentEncodedAlphanumeric("\xE2\x82\xAC"), "%E2%82%AC");
    EXPECT_EQ(percentEncodedAlphanumeric("\xE2\x80\xA8"), "%E2%80%A8");
    EXPECT_EQ(percentEncodedAlphanumeric(std::string(1, '\0')), "%00");
    EXPECT_EQ(percentEncodedAlphanumeric(""), "");
}

TEST(PercentEncoding, fails_for_what_is_not_utf_8) {
    for (const auto* text : {"\xFF", "a\xC3", "\xED\xA0\x80"}) {
        EXPECT_EQ(percentEncodedAlphanumeric(text), std::nullopt);
    }
}

TEST(ProjectRequestBody, is_an_object_with_the_path_alone) {
    for (const std::string path : {"/a/b", "/a\nb", "/caf\xC3\xA9 \"x\"\\", ""}) {
        const auto body = projectRequestBody(path);
        ASSERT_TRUE(body);
        EXPECT_EQ(nlohmann::json::parse(*body), (nlohmann::json{{"path", path}}));
        EXPECT_EQ(body->find('\n'), std::string::npos) << "compact, on one line";
        EXPECT_EQ(body->substr(0, 8), "{\"path\":");
    }
}

TEST(ProjectRequestBody, is_none_for_a_path_that_is_not_utf_8) {
    EXPECT_EQ(projectRequestBody("/a\xFF"), std::nullopt);
}

} // namespace
} // namespace harbrook::tests
