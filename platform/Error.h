#pragma once

#include <string>

namespace harbrook {

/// What went wrong, in the words the platform has for the user.
struct Error {
    std::string localizedDescription;
    bool operator==(const Error&) const = default;
};

} // namespace harbrook
