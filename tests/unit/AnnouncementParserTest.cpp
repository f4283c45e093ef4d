#include "server/AnnouncementParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace harbrook::tests {
namespace {

using Port = std::optional<std::int64_t>;

Port portIn(const std::vector<std::string>& chunks) {
    AnnouncementParser parser;
    Port port;
    for (const auto& chunk : chunks)
        port = parser.append(chunk);
    return port;
}

TEST(AnnouncementParser, takes_the_number_after_the_marker) {
    EXPECT_EQ(portIn({"HARBROOK_PORT 47545\n"}), 47545);
}

TEST(AnnouncementParser, finds_the_marker_anywhere_and_needs_no_end) {
    EXPECT_EQ(portIn({"dashboard ready, HARBROOK_PORT 3000, have fun\n"}), 3000);
    EXPECT_EQ(portIn({"xHARBROOK_PORT 3000"}), 3000);
    EXPECT_EQ(portIn({"HARBROOK_PORT 3000abc"}), 3000);
}

TEST(AnnouncementParser, says_nothing_without_the_marker) {
    EXPECT_EQ(portIn({""}), std::nullopt);
    EXPECT_EQ(portIn({"listening on 3000\n"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT=3000"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT\t3000"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT\n3000"}), std::nullopt);
    EXPECT_EQ(portIn({"harbrook_port 3000"}), std::nullopt);
}

TEST(AnnouncementParser, reads_digits_up_to_the_end_of_what_has_arrived) {
    AnnouncementParser parser;
    EXPECT_EQ(parser.append("HARBROOK_PORT 475"), 475);
    EXPECT_EQ(parser.append("46\n"), 47546) << "asked again, it answers for the whole text";
}

TEST(AnnouncementParser, waits_for_digits_after_a_marker_at_the_end) {
    AnnouncementParser parser;
    EXPECT_EQ(parser.append("HARBROOK_PORT "), std::nullopt);
    EXPECT_EQ(parser.append(""), std::nullopt);
    EXPECT_EQ(parser.append("8"), 8);
}

TEST(AnnouncementParser, puts_a_marker_together_that_came_in_pieces) {
    EXPECT_EQ(portIn({"HARB", "ROOK", "_PORT", " ", "8", "0"}), 80);
    EXPECT_EQ(portIn({"HARBROOK_HARBROOK_P", "ORT 80"}), 80);
}

TEST(AnnouncementParser, takes_the_first_of_two_announcements) {
    EXPECT_EQ(portIn({"HARBROOK_PORT 1\nHARBROOK_PORT 2\n"}), 1);
    EXPECT_EQ(portIn({"HARBROOK_PORT 1\n", "HARBROOK_PORT 2\n"}), 1);
}

TEST(AnnouncementParser, never_gets_past_a_first_marker_without_a_number) {
    EXPECT_EQ(portIn({"HARBROOK_PORT x\n", "HARBROOK_PORT 3000\n"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT  3000"}), std::nullopt) << "a second blank is no digit";
    EXPECT_EQ(portIn({"HARBROOK_PORT -1"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT +1"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT HARBROOK_PORT 3000"}), std::nullopt);
}

TEST(AnnouncementParser, takes_0_and_leading_zeros) {
    EXPECT_EQ(portIn({"HARBROOK_PORT 0\n"}), 0);
    EXPECT_EQ(portIn({"HARBROOK_PORT 0080\n"}), 80);
}

TEST(AnnouncementParser, takes_every_64_bit_number_and_no_larger_one) {
    EXPECT_EQ(portIn({"HARBROOK_PORT 9223372036854775807"}), 9223372036854775807);
    EXPECT_EQ(portIn({"HARBROOK_PORT 9223372036854775808"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT 99999999999999999999999999999999"}), std::nullopt);
    EXPECT_EQ(portIn({"HARBROOK_PORT 00000000000000000000000000000001"}), 1);
}

TEST(AnnouncementParser, lets_any_numeric_character_into_the_number_and_is_spoilt_by_it) {
    EXPECT_EQ(portIn({"HARBROOK_PORT 30\xC2\xB2"}), std::nullopt) << "superscript two";
    EXPECT_EQ(portIn({"HARBROOK_PORT 30\xC2\xBD"}), std::nullopt) << "one half";
    EXPECT_EQ(portIn({"HARBROOK_PORT \xD9\xA3\xD9\xA0"}), std::nullopt) << "Arabic-Indic digits";
    EXPECT_EQ(portIn({"HARBROOK_PORT 30\xE2\x85\xA7"}), std::nullopt) << "Roman numeral eight";
    EXPECT_EQ(portIn({"HARBROOK_PORT 30\xEF\xBC\x91"}), std::nullopt) << "full-width one";
    EXPECT_EQ(portIn({"HARBROOK_PORT 30\xF0\x9D\x9F\x8E"}), std::nullopt) << "mathematical bold zero";
    EXPECT_EQ(portIn({"HARBROOK_PORT 30\xC3\xA9"}), 30) << "a letter only ends it";
}

// The plain way of doing it, over and over from the start of an ever longer text.

/// Characters that have a numeric value without being a digit of ours.
constexpr std::array<std::string_view, 6> numericCharacters = {
    "\xC2\xB2", "\xC2\xBD", "\xD9\xA3", "\xE2\x85\xA7", "\xEF\xBC\x91", "\xF0\x9D\x9F\x8E"};
constexpr std::array<std::string_view, 14> otherPieces = {
    "HARBROOK_PORT ", "HARBROOK_PORT ", "HARBROOK_PORT",    "HARBROOK_", "H", "PORT ", " ", "\n", "x",
    "\xC3\xA9",       "\xE5\xAD\x97",   "\xF0\x9F\x98\x80", "-",         "."};

std::size_t numericLength(std::string_view text) {
    if (!text.empty() && text[0] >= '0' && text[0] <= '9') return 1;
    for (const auto character : numericCharacters) {
        if (text.starts_with(character)) return character.size();
    }
    return 0;
}

Port portByPlainSearch(std::string_view text) {
    constexpr std::string_view marker = "HARBROOK_PORT ";
    const auto position = text.find(marker);
    if (position == std::string_view::npos) return std::nullopt;
    const auto rest = text.substr(position + marker.size());
    std::size_t end = 0;
    while (const auto length = numericLength(rest.substr(end)))
        end += length;
    const auto run = rest.substr(0, end);
    std::int64_t number = 0;
    const auto [last, error] = std::from_chars(run.data(), run.data() + run.size(), number);
    if (run.empty() || error != std::errc() || last != run.data() + run.size()) return std::nullopt;
    return number;
}

TEST(AnnouncementParser, agrees_with_a_plain_search_of_the_whole_text_after_every_piece) {
    std::mt19937 random(4711);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        AnnouncementParser parser;
        std::string text;
        for (std::size_t piece = 0, pieces = 1 + below(12); piece < pieces; ++piece) {
            std::string chunk;
            for (std::size_t part = below(4); part > 0; --part) {
                switch (below(8)) {
                case 0:
                    chunk += numericCharacters[below(numericCharacters.size())];
                    break;
                case 1:
                case 2:
                case 3:
                    chunk += std::to_string(random() >> below(32));
                    break;
                default:
                    chunk += otherPieces[below(otherPieces.size())];
                    break;
                }
            }
            text += chunk;
            const auto port = parser.append(chunk);
            ASSERT_EQ(port, portByPlainSearch(text)) << "after: " << text;
            found += port.has_value();
        }
    }
    EXPECT_GT(found, 1000) << "the texts do hold announcements";
}

} // namespace
} // namespace harbrook::tests
