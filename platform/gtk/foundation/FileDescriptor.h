#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace harbrook::gtk {

/// Owns an open file of the system, or none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (number_ >= 0) close(number_);
    }

    /// The number, or -1 for none.
    [[nodiscard]] int number() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    int number_ = -1;
};

/// Calls `call` until no signal interrupts it.
template <typename Call>
auto retryWhenInterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

/// Writes all of `data`. Whether that went well; `errno` tells why not.
[[nodiscard]] bool writeAll(int descriptor, std::string_view data);

} // namespace harbrook::gtk
