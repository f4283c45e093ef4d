#include "status/State.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto zeroStats = R"("stats":{"running":0,"postgres":0,"redis":0,"containers":0})";

/// A document with one project.
std::string withProject(const std::string& project) {
    return R"({"projects":[)" + project + "]," + zeroStats + "}";
}

/// A project with one of its members written as `member`, or without it.
std::string project(const std::string& replaced, const std::string& member) {
    std::string json = "{";
    for (const auto& [key, value] : std::vector<std::pair<std::string, std::string>>{
             {"name", "\"shop\""}, {"path", "\"/p/shop\""}, {"running", "true"}, {"ports", "[3000]"}}) {
        const auto text = key == replaced ? member : "\"" + key + "\":" + value;
        if (text.empty()) continue;
        json += (json.size() > 1 ? "," : "") + text;
    }
    return json + "}";
}

std::string withStats(const std::string& stats) {
    return R"({"projects":[],"stats":)" + stats + "}";
}

TEST(State, decodes_a_whole_snapshot_in_the_servers_order) {
    const auto state = decodeState(R"({
        "projects": [
            {"name": "shop", "path": "/p/shop", "running": true, "ports": [3000, 5173],
             "hasCommand": true, "appRunning": false, "menubar": true},
            {"name": "café", "path": "/p/caf\u00e9", "running": false, "ports": []}
        ],
        "stats": {"running": 1, "postgres": 2, "redis": 3, "containers": 4}
    })");
    ASSERT_TRUE(state);
    EXPECT_THAT(
        state->projects,
        ElementsAre(
            State::Project{"shop", "/p/shop", true, {3000, 5173}, true, false, true},
            State::Project{"café", "/p/café", false, {}, std::nullopt, std::nullopt, std::nullopt}));
    EXPECT_EQ(state->stats, (State::Stats{1, 2, 3, 4}));
}

TEST(State, of_no_projects_and_zero_counts_is_a_snapshot) {
    const auto state =
        decodeState(R"({"projects":[],"stats":{"running":0,"postgres":0,"redis":0,"containers":0}})");
    ASSERT_TRUE(state);
    EXPECT_THAT(state->projects, IsEmpty());
    EXPECT_EQ(state->stats, State::Stats{});
}

TEST(State, optional_members_have_three_values) {
    for (const std::string key : {"hasCommand", "appRunning", "menubar"}) {
        const auto valueOf = [&](const std::string& json) {
            const auto state = decodeState(withProject(json));
            EXPECT_TRUE(state) << json;
            const auto& found = state->projects.at(0);
            return key == "hasCommand"   ? found.hasCommand
                   : key == "appRunning" ? found.appRunning
                                         : found.menubar;
        };
        const auto with = [&](const std::string& value) {
            return R"({"name":"a","path":"b","running":false,"ports":[],")" + key + "\":" + value + "}";
        };
        EXPECT_EQ(valueOf(with("true")), true);
        EXPECT_EQ(valueOf(with("false")), false);
        EXPECT_EQ(valueOf(with("null")), std::nullopt);
        EXPECT_EQ(valueOf(project("", "")), std::nullopt);
        for (const auto* wrong : {"1", "0", "\"true\"", "[]", "{}"}) {
            EXPECT_FALSE(decodeState(withProject(with(wrong)))) << key << " " << wrong;
        }
    }
}

TEST(State, unknown_members_are_passed_over) {
    EXPECT_TRUE(decodeState(
        R"({"extra":[1,{"a":null}],"projects":[{"name":"a","path":"b","running":true,"ports":[1],"x":{}}],)" +
        std::string(R"("stats":{"running":0,"postgres":0,"redis":0,"containers":0,"mysql":"many"}})")));
}

TEST(State, unknown_members_may_have_any_value) {
    for (const std::string value :
         {"null", "true", "false", "0", "-1.5e300", "123456789012345678901234567890", "\"\"", "\"x\"", "[]",
          "[[], {}, null]", "{}", R"({"projects":7,"stats":[],"name":null,"running":"no"})"}) {
        const auto extra = R"("extra":)" + value + ",";
        const auto state = decodeState(
            "{" + extra + R"("projects":[{)" + extra +
            R"("name":"a","path":"b","running":true,"ports":[1]}],)" + R"("stats":{)" + extra +
            R"("running":0,"postgres":1,"redis":2,"containers":3}})");
        ASSERT_TRUE(state) << value;
        EXPECT_EQ(state->projects.at(0).name, "a");
        EXPECT_EQ(state->stats.containers, 3);
    }
}

TEST(State, is_absent_when_a_top_level_member_is_missing_or_wrong) {
    const std::string stats = zeroStats;
    const std::vector<std::string> documents = {
        "{}",
        R"({"projects":[]})",
        "{" + stats + "}",
        R"({"projects":null,)" + stats + "}",
        R"({"projects":{},)" + stats + "}",
        R"({"Projects":[],)" + stats + "}",
        R"({"projects":[],"stats":null})",
        R"({"projects":[],"stats":[]})",
        R"({"projects":[null],)" + stats + "}",
        R"({"projects":["a"],)" + stats + "}",
        R"({"projects":[[]],)" + stats + "}"};
    for (const auto& json : documents) {
        EXPECT_FALSE(decodeState(json)) << json;
    }
}

TEST(State, is_absent_when_a_project_lacks_a_required_member_or_has_it_wrong) {
    ASSERT_TRUE(decodeState(withProject(project("", ""))));
    for (const std::string key : {"name", "path", "running", "ports"}) {
        EXPECT_FALSE(decodeState(withProject(project(key, "")))) << key;
        for (const std::string value :
             {"null", "{}", "1", "\"\"", "true", "[\"a\"]", "[true]", "[null]", "[[]]"}) {
            const bool fits = (value == "\"\"" && (key == "name" || key == "path")) ||
                              (value == "true" && key == "running");
            EXPECT_EQ(decodeState(withProject(project(key, "\"" + key + "\":" + value))).has_value(), fits)
                << key << " " << value;
        }
    }
}

TEST(State, one_bad_project_makes_the_whole_of_it_absent) {
    const auto good = project("", "");
    EXPECT_TRUE(decodeState(withProject(good + "," + good)));
    EXPECT_FALSE(decodeState(withProject(good + "," + project("name", ""))));
}

TEST(State, is_absent_when_a_count_is_missing_or_wrong_even_the_one_that_is_not_shown) {
    for (const std::string missing : {"running", "postgres", "redis", "containers"}) {
        std::string json;
        std::string wrong;
        for (const std::string key : {"running", "postgres", "redis", "containers"}) {
            if (key != missing) json += (json.empty() ? "" : ",") + ("\"" + key + "\":1");
            wrong += (wrong.empty() ? "" : ",") + ("\"" + key + "\":") + (key == missing ? "\"1\"" : "1");
        }
        EXPECT_FALSE(decodeState(withStats("{" + json + "}"))) << missing;
        EXPECT_FALSE(decodeState(withStats("{" + wrong + "}"))) << missing;
    }
}

struct Number {
    const char* text;
    std::optional<std::int64_t> value;
};

std::ostream& operator<<(std::ostream& out, const Number& number) {
    return out << number.text;
}

class StateInteger : public testing::TestWithParam<Number> {};

TEST_P(StateInteger, is_a_whole_number_of_64_bits) {
    const auto state = decodeState(withStats(
        std::string(R"({"running":0,"redis":0,"containers":0,"postgres":)") + GetParam().text + "}"));
    EXPECT_EQ(state.has_value(), GetParam().value.has_value()) << GetParam().text;
    if (state && GetParam().value) {
        EXPECT_EQ(state->stats.postgres, *GetParam().value) << GetParam().text;
    }
    const auto port =
        decodeState(withProject(project("ports", R"("ports":[1,)" + std::string(GetParam().text) + "]")));
    EXPECT_EQ(port.has_value(), GetParam().value.has_value()) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, StateInteger,
    testing::Values(
        Number{"0", 0}, Number{"-0", 0}, Number{"-7", -7}, Number{"3000.0", 3000}, Number{"3e3", 3000},
        Number{"30000e-1", 3000}, Number{"-2.0E2", -200}, Number{"0.0", 0},
        Number{"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        Number{"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        Number{"9223372036854775808", std::nullopt}, Number{"-9223372036854775809", std::nullopt},
        Number{"18446744073709551615", std::nullopt}, Number{"18446744073709551616", std::nullopt},
        Number{"1e19", std::nullopt}, Number{"9.3e18", std::nullopt}, Number{"-9.3e18", std::nullopt},
        Number{"1e400", std::nullopt}, Number{"3000.5", std::nullopt}, Number{"1e-1", std::nullopt},
        Number{"true", std::nullopt}, Number{"false", std::nullopt}, Number{"null", std::nullopt},
        Number{"\"3000\"", std::nullopt}, Number{"[3000]", std::nullopt}, Number{"NaN", std::nullopt},
        Number{"Infinity", std::nullopt}, Number{"0x10", std::nullopt}, Number{"010", std::nullopt},
        Number{"+1", std::nullopt}, Number{"1.", std::nullopt}, Number{".5", std::nullopt}));

TEST(State, is_absent_for_what_is_no_json_document) {
    const std::string good = withStats(R"({"running":0,"postgres":0,"redis":0,"containers":0})");
    ASSERT_TRUE(decodeState(good));
    EXPECT_TRUE(decodeState(" \r\n\t" + good + "\n"));
    for (const std::string& json :
         {std::string(), std::string(" "), std::string("null"), std::string("[]"), std::string("\"\""),
          std::string("Unauthorized"), std::string("<html></html>"), good + good, good + "x", good + ",",
          good + "]", good.substr(0, good.size() - 1), "x" + good, "/* no */" + good,
          good + std::string(1, '\0'), good + std::string("\0x", 2), std::string("{'projects':[]}")}) {
        EXPECT_FALSE(decodeState(json)) << json;
    }
}

TEST(State, is_absent_for_text_that_is_not_utf_8) {
    for (const auto* name : {"\xFF", "a\xC3", "\xED\xA0\x80", "\xC0\xAF"}) {
        EXPECT_FALSE(decodeState(withProject(project("name", "\"name\":\"" + std::string(name) + "\""))));
        EXPECT_FALSE(
            decodeState(withProject(project("", "").insert(1, "\"x\":\"" + std::string(name) + "\","))));
    }
    EXPECT_FALSE(decodeState(withProject(project("name", R"("name":"\ud800")"))));
    EXPECT_TRUE(decodeState(withProject(project("name", R"("name":"\ud83d\ude00")"))));
}

TEST(State, is_absent_for_nesting_bombs_without_harm) {
    for (const std::size_t depth : {1'000, 200'000}) {
        const std::string open(depth, '[');
        const std::string close(depth, ']');
        EXPECT_FALSE(decodeState(open));
        EXPECT_FALSE(decodeState(open + close));
        EXPECT_FALSE(decodeState(R"({"x":)" + open + close + R"(,"projects":[],)" + zeroStats + "}"));
        std::string objects;
        for (std::size_t i = 0; i < depth; ++i)
            objects += "{\"x\":";
        EXPECT_FALSE(decodeState(objects));
    }
}

TEST(State, decodes_many_projects) {
    std::string projects;
    for (int i = 0; i < 3000; ++i)
        projects += (i ? "," : "") + project("ports", "\"ports\":[" + std::to_string(i) + "]");
    const auto state = decodeState(withProject(projects));
    ASSERT_TRUE(state);
    ASSERT_EQ(state->projects.size(), 3000U);
    EXPECT_THAT(state->projects.back().ports, ElementsAre(2999));
}

} // namespace
} // namespace harbrook::tests
