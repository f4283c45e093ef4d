#include "server/OutputText.h"
#include "server/Text.h"

#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

TEST(ValidUTF8, accepts_well_formed_text_of_every_length) {
    for (const std::string text :
         {"", "a", "abcdefgh", "abcdefghi", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
          "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "12345678\xC3\xA9",
          "1234567\xC3\xA9 12345678"}) {
        EXPECT_TRUE(isValidUTF8(text)) << text;
    }
    EXPECT_TRUE(isValidUTF8(std::string(3, '\0')));
}

TEST(ValidUTF8, refuses_what_is_not_well_formed_wherever_it_stands) {
    for (const std::string bad :
         {"\x80", "\xBF", "\xC3", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xED\xA0\x80",
          "\xED\xBF\xBF", "\xE2\x82", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF", "\xC3\xC3\xA9"}) {
        EXPECT_FALSE(isValidUTF8(bad));
        for (const std::size_t before : {1, 7, 8, 9, 16}) {
            EXPECT_FALSE(isValidUTF8(std::string(before, 'a') + bad)) << before;
            EXPECT_FALSE(isValidUTF8(bad + std::string(before, 'a'))) << before;
        }
    }
}

TEST(Trimmed, takes_away_white_space_at_both_ends_only) {
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(" \t\n"), "");
    EXPECT_EQ(trimmed("a"), "a");
    EXPECT_EQ(trimmed(" a b\n c \r\n"), "a b\n c");
    EXPECT_EQ(trimmed("\xE2\x80\x89\xC3\xA9\xE2\x80\x89"), "\xC3\xA9");
}

TEST(OutputText, keeps_everything_in_order) {
    OutputText text;
    std::string whole;
    for (int i = 0; i < 3000; ++i) {
        const auto piece = std::string(static_cast<std::size_t>(i % 97), static_cast<char>('a' + i % 26));
        text.append(piece);
        whole += piece;
    }
    const std::string large(200'000, 'L');
    text.append(large);
    whole += large;
    EXPECT_EQ(text.size(), whole.size());
    EXPECT_EQ(text.string(), whole);
}

} // namespace
} // namespace harbrook::tests
