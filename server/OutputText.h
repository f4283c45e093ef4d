#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace harbrook {

/// All that the server has printed, kept whole for as long as it runs. It grows in blocks, so that keeping
/// the text costs little more than the text itself and appending never copies what is already there.
class OutputText {
public:
    void append(std::string_view text);
    [[nodiscard]] std::size_t size() const { return size_; }
    /// A copy in one piece.
    [[nodiscard]] std::string string() const;

private:
    static constexpr std::size_t blockSize = 64 * 1024;

    std::deque<std::string> blocks_;
    std::size_t size_ = 0;
};

} // namespace harbrook
