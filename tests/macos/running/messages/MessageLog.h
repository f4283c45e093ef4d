#pragma once

#include <string>
#include <vector>

namespace harbrook::running {

/// What the program said to the platform, and what the platform told the program's delegates, in order.
class MessageLog {
public:
    void note(std::string line) { lines_.push_back(std::move(line)); }
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
    void clear() { lines_.clear(); }

    /// How many messages there were since the program began.
    inline static long count = 0;

private:
    std::vector<std::string> lines_;
};

} // namespace harbrook::running
