#pragma once

#include "tests/contract/Desktop.h"

namespace harbrook::contract {

#if defined(__SANITIZE_THREAD__)
inline constexpr bool underThreadSanitizer = true;
#else
inline constexpr bool underThreadSanitizer = false;
#endif
/// Why some tests are left out there: what they try runs on one thread of ours, and on several of GLib's.
inline constexpr auto threadsOfTheToolkit =
    "GLib's own threads share memory under locks that the thread sanitizer does not know";

/// The real desktop, in real time. Whatever needs a display gets a private one.
[[nodiscard]] std::unique_ptr<Desktop> makeGtkDesktop();

/// The platform of this process; there is only ever one.
[[nodiscard]] Platform& gtkPlatform();

/// Runs the main loop until `condition` holds; whether it came to hold within `seconds`.
[[nodiscard]] bool runMainLoopUntil(const std::function<bool()>& condition, double seconds = 30);

/// A new empty directory, gone with the object.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// What a file holds, or none.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path);
/// Puts a shell script there that may be run.
void writeScript(const std::filesystem::path& path, const std::string& text);

} // namespace harbrook::contract
