#pragma once

#include <optional>

namespace harbrook {

/// Remembers what was last handed on, so that an equal value need not be handed on again.
template <typename Value>
class Latest {
public:
    /// Takes `value` for the latest. Whether it differs from the one before; the first one does.
    [[nodiscard]] bool take(const Value& value) {
        if (value_ == value) return false;
        value_ = value;
        return true;
    }

private:
    std::optional<Value> value_;
};

} // namespace harbrook
