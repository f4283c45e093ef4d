#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace harbrook {

/// A property-list-like value that crosses from a page or from another program into the shell:
/// the body of a script message, the result of a script, the user information of a notification.
/// Numbers are doubles, as a page's are.
struct Value {
    using Null = std::monostate;
    using Array = std::vector<Value>;
    using Dictionary = std::map<std::string, Value>;

    std::variant<Null, bool, double, std::string, Array, Dictionary> content;

    Value() = default;
    Value(bool value) : content(value) {}
    Value(double value) : content(value) {}
    Value(std::string value) : content(std::move(value)) {}
    Value(const char* value) : content(std::string(value)) {}
    Value(Array value) : content(std::move(value)) {}
    Value(Dictionary value) : content(std::move(value)) {}

    /// The value as a `T`, or null when it is of another type. Nothing is converted.
    template <typename T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&content);
    }

    bool operator==(const Value&) const = default;
};

/// The string under `key`, or null when the key is missing or its value is not a string.
[[nodiscard]] inline const std::string* stringForKey(
    const Value::Dictionary& dictionary, const std::string& key) {
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : found->second.as<std::string>();
}

} // namespace harbrook
