#include "platform/Descriptor.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace harbrook {

namespace {

/// What a pipe holds.
constexpr std::size_t readSize = std::size_t{64} * 1024;

} // namespace

std::string readAvailable(int descriptor) {
    std::string data(readSize, '\0');
    ssize_t count = 0;
    do {
        count = read(descriptor, data.data(), data.size());
    } while (count < 0 && errno == EINTR);
    data.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return data;
}

} // namespace harbrook
