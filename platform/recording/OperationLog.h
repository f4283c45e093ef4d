#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace harbrook::recording {

/// What was asked of the desktop, one readable line an operation, in order. A line begins with whom it was
/// asked of: `window setTitle: "Harbrook"`. Questions that change nothing are left out, except those about
/// files, whose order matters.
class OperationLog {
public:
    void note(std::string line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::move(line));
    }

    [[nodiscard]] std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

    /// The lines so far; the log is empty afterwards.
    std::vector<std::string> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

    void clear() { take(); }

    /// The lines that begin with `prefix`, such as `window` or `webView evaluateJavaScript`.
    [[nodiscard]] std::vector<std::string> linesOf(std::string_view prefix) const {
        const std::lock_guard lock(mutex_);
        std::vector<std::string> found;
        for (const auto& line : lines_) {
            if (line.starts_with(prefix)) found.push_back(line);
        }
        return found;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

} // namespace harbrook::recording
