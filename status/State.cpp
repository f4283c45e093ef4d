#include "status/State.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace harbrook {

namespace {

using Json = nlohmann::json;

/// As deep as the platforms' own decoders go.
constexpr int maximumDepth = 512;

// Each `decode` fills its last argument from a value, and says whether it could.

bool decode(const Json& json, std::string& result) {
    if (!json.is_string()) return false;
    result = json.get_ref<const std::string&>();
    return true;
}

bool decode(const Json& json, bool& result) {
    if (!json.is_boolean()) return false;
    result = json.get<bool>();
    return true;
}

bool decode(const Json& json, std::int64_t& result) {
    if (json.is_number_unsigned()) {
        const auto number = json.get<std::uint64_t>();
        result = static_cast<std::int64_t>(number);
        return std::in_range<std::int64_t>(number);
    }
    if (json.is_number_integer()) {
        result = json.get<std::int64_t>();
        return true;
    }
    if (!json.is_number_float()) return false;
    // 3000.0 and 3e3 are whole numbers too. 2^63 is the first double above the range; -2^63 comes as an
    // integer, and as a double is what a number below the range was rounded to.
    constexpr double limit = 9223372036854775808.0;
    const auto number = json.get<double>();
    if (std::trunc(number) != number || number <= -limit || number >= limit) return false;
    result = static_cast<std::int64_t>(number);
    return true;
}

bool decode(const Json& json, State::Project& result);
bool decode(const Json& json, State::Stats& result);

template <typename T>
bool decode(const Json& json, std::vector<T>& result) {
    if (!json.is_array()) return false;
    result.resize(json.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        if (!decode(json[i], result[i])) return false;
    }
    return true;
}

template <typename T>
bool decodeMember(const Json& object, const char* key, T& result) {
    const auto member = object.find(key);
    return member != object.end() && decode(*member, result);
}

bool decodeMember(const Json& object, const char* key, std::optional<bool>& result) {
    const auto member = object.find(key);
    if (member == object.end() || member->is_null()) return true;
    return decode(*member, result.emplace());
}

bool decode(const Json& json, State::Project& result) {
    return json.is_object() && decodeMember(json, "name", result.name) &&
           decodeMember(json, "path", result.path) && decodeMember(json, "running", result.running) &&
           decodeMember(json, "ports", result.ports) && decodeMember(json, "hasCommand", result.hasCommand) &&
           decodeMember(json, "appRunning", result.appRunning) &&
           decodeMember(json, "menubar", result.menubar);
}

bool decode(const Json& json, State::Stats& result) {
    return json.is_object() && decodeMember(json, "running", result.running) &&
           decodeMember(json, "postgres", result.postgres) && decodeMember(json, "redis", result.redis) &&
           decodeMember(json, "containers", result.containers);
}

bool decode(const Json& json, State& result) {
    return json.is_object() && decodeMember(json, "projects", result.projects) &&
           decodeMember(json, "stats", result.stats);
}

} // namespace

std::optional<State> decodeState(std::string_view json) {
    // The parser would take a zero byte for the end of the text.
    if (json.find('\0') != std::string_view::npos) return std::nullopt;
    bool tooDeep = false;
    const auto document = Json::parse(
        json.begin(), json.end(),
        [&tooDeep](int depth, Json::parse_event_t, const Json&) {
            tooDeep = tooDeep || depth > maximumDepth;
            return !tooDeep;
        },
        false);
    if (tooDeep || document.is_discarded()) return std::nullopt;
    State state;
    if (!decode(document, state)) return std::nullopt;
    return state;
}

} // namespace harbrook
