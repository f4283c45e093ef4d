#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace harbrook {

/// Finds the port that the server announces on its standard output: the first "HARBROOK_PORT " anywhere in
/// the output, and the digits that follow it.
///
/// Fed piece by piece, it gives after each piece the answer that a search of all the text so far would give,
/// and looks at each byte once.
class AnnouncementParser {
public:
    /// Takes the next piece of text (valid UTF-8). The port announced in all the text so far, as far as it
    /// has arrived, or none.
    std::optional<std::int64_t> append(std::string_view text);

private:
    void appendToRun(std::string_view text);

    bool markerFound_ = false;
    /// The end of the text so far that could be the beginning of the marker.
    std::string tail_;

    // The run of numeric characters after the marker.
    bool runEnded_ = false;
    bool runIsNumber_ = true;
    std::optional<std::int64_t> number_;
};

} // namespace harbrook
