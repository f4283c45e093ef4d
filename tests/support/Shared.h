#pragma once

#include <mutex>
#include <utility>

namespace harbrook::tests {

/// A value that several threads of a test note things in.
template <typename T>
class Shared {
public:
    template <typename Change>
    void change(Change change) {
        const std::lock_guard lock(mutex_);
        change(value_);
    }
    [[nodiscard]] T get() const {
        const std::lock_guard lock(mutex_);
        return value_;
    }

private:
    mutable std::mutex mutex_;
    T value_{};
};

} // namespace harbrook::tests
