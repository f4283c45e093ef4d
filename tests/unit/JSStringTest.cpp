#include "window/JSString.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <random>

namespace harbrook::tests {
namespace {

TEST(JSString, of_nothing_is_two_quotes) {
    EXPECT_EQ(jsString(""), R"("")");
}

TEST(JSString, escapes_every_slash_of_a_path) {
    EXPECT_EQ(jsString("/Users/a b/x"), R"("\/Users\/a b\/x")");
    EXPECT_EQ(jsString("//"), R"("\/\/")");
}

TEST(JSString, escapes_quote_backslash_newline_and_slash_and_keeps_other_letters) {
    EXPECT_EQ(jsString("\"\\\n/\xC3\xA9"), "\"\\\"\\\\\\n\\/\xC3\xA9\"");
    EXPECT_EQ(jsString("\\/"), R"("\\\/")");
    EXPECT_EQ(jsString("'`$"), "\"'`$\"");
}

TEST(JSString, writes_control_characters_short_where_it_can) {
    EXPECT_EQ(jsString("\b\f\n\r\t"), R"("\b\f\n\r\t")");
    EXPECT_EQ(jsString(std::string("\0\x01\x1F", 3)), R"("\u0000\u0001\u001f")");
    EXPECT_EQ(jsString("\x7F"), "\"\x7F\"");
}

TEST(JSString, keeps_line_separators_and_astral_characters_as_they_are) {
    EXPECT_EQ(jsString("\xE2\x80\xA8\xE2\x80\xA9"), "\"\xE2\x80\xA8\xE2\x80\xA9\"");
    EXPECT_EQ(jsString("\xF0\x9F\x98\x80"), "\"\xF0\x9F\x98\x80\"");
    EXPECT_EQ(jsString("\xEF\xBB\xBF"), "\"\xEF\xBB\xBF\"");
}

TEST(JSString, of_what_is_not_utf_8_is_the_empty_literal) {
    for (const auto* text : {"\xFF", "a\xC3", "\xED\xA0\x80", "\xC0\xAF", "a\x80z", "\xF4\x90\x80\x80"}) {
        EXPECT_EQ(jsString(text), R"("")");
    }
}

/// Any text: characters of all lengths, with many of those that need an escape.
std::string randomText(std::mt19937& random) {
    constexpr std::string_view special = "\"\\/\n\r\t\b\f'<>&";
    std::string text;
    for (std::size_t left = random() % 24; left > 0; --left) {
        std::uint32_t character = 0;
        switch (random() % 6) {
        case 0:
            character = static_cast<unsigned char>(special[random() % special.size()]);
            break;
        case 1:
            character = random() % 0x20;
            break;
        case 2:
            character = 0x20 + random() % 0x60;
            break;
        case 3:
            character = 0x80 + random() % 0x780;
            break;
        case 4:
            character = 0x800 + random() % 0xD000;
            break;
        default:
            character = 0x10000 + random() % 0x100000;
            break;
        }
        if (character < 0x80) {
            text += static_cast<char>(character);
        } else if (character < 0x800) {
            text += static_cast<char>(0xC0 | character >> 6);
            text += static_cast<char>(0x80 | (character & 63));
        } else if (character < 0x10000) {
            text += static_cast<char>(0xE0 | character >> 12);
            text += static_cast<char>(0x80 | (character >> 6 & 63));
            text += static_cast<char>(0x80 | (character & 63));
        } else {
            text += static_cast<char>(0xF0 | character >> 18);
            text += static_cast<char>(0x80 | (character >> 12 & 63));
            text += static_cast<char>(0x80 | (character >> 6 & 63));
            text += static_cast<char>(0x80 | (character & 63));
        }
    }
    return text;
}

/// The literal, character by character.
std::string plainLiteral(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string literal = "\"";
    for (const char character : text) {
        switch (character) {
        case '"':
            literal += "\\\"";
            break;
        case '\\':
            literal += "\\\\";
            break;
        case '/':
            literal += "\\/";
            break;
        case '\b':
            literal += "\\b";
            break;
        case '\f':
            literal += "\\f";
            break;
        case '\n':
            literal += "\\n";
            break;
        case '\r':
            literal += "\\r";
            break;
        case '\t':
            literal += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(character) < 0x20) {
                literal += "\\u00";
                literal += digits[static_cast<std::size_t>(character >> 4)];
                literal += digits[character & 15];
            } else {
                literal += character;
            }
        }
    }
    return literal + '"';
}

TEST(JSString, gives_any_text_back_when_it_is_read_again) {
    std::mt19937 random(1);
    for (int i = 0; i < 50'000; ++i) {
        const auto text = randomText(random);
        const auto literal = jsString(text);
        ASSERT_EQ(nlohmann::json::parse(literal).get<std::string>(), text);
        ASSERT_EQ(literal, plainLiteral(text));
    }
}

TEST(JSString, of_random_bytes_is_a_literal_too) {
    std::mt19937 random(2);
    for (int i = 0; i < 20'000; ++i) {
        std::string bytes;
        for (std::size_t left = random() % 6; left > 0; --left)
            bytes += static_cast<char>(random());
        const auto literal = jsString(bytes);
        const auto read = nlohmann::json::parse(literal).get<std::string>();
        ASSERT_TRUE(read == bytes || literal == R"("")");
    }
}

} // namespace
} // namespace harbrook::tests
