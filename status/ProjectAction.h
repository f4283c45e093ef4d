#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace harbrook {

/// What a start or stop item asks for.
struct ProjectAction {
    /// "start" or "stop".
    std::string verb;
    /// The project's folder.
    std::string path;
    bool operator==(const ProjectAction&) const = default;
};

/// Splits a verb, a line feed and a path, at the first line feed only; a path may hold more of them. None
/// unless both pieces are there.
[[nodiscard]] std::optional<ProjectAction> projectAction(std::string_view represented);

/// `text` with every character percent-encoded (as UTF-8) that is not a letter, mark or number of any script
/// (Unicode categories L, M and N). None when `text` is not UTF-8.
[[nodiscard]] std::optional<std::string> percentEncodedAlphanumeric(std::string_view text);

/// The body of a start or stop request: a JSON object with the path. None when the path is not UTF-8.
[[nodiscard]] std::optional<std::string> projectRequestBody(const std::string& path);

} // namespace harbrook
