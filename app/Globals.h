#pragma once

#include "platform/Platform.h"
#include "platform/URL.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>

namespace harbrook {

/// What every part of the shell knows, made once per launch and before anything else.
class Globals {
public:
    /// Makes the values in the order in which they are declared, and moves the data directory of earlier
    /// versions to its new name.
    explicit Globals(Platform& platform);

    /// The port that the server announced; 0 until then. Any thread.
    [[nodiscard]] std::int64_t serverPort() const { return serverPort_.load(std::memory_order_acquire); }
    /// The root of the server; until it is known, an address on port 1 where every request is refused at
    /// once. Any thread.
    [[nodiscard]] URL baseURL() const;
    /// Written once, by the server launcher, before it reports success. Any thread.
    void setServerPort(std::int64_t port) { serverPort_.store(port, std::memory_order_release); }
    void setBaseURL(URL url);

private:
    std::atomic<std::int64_t> serverPort_ = 0;
    mutable std::mutex baseURLMutex_;
    URL baseURL_;

public:
    /// 64 lower-case hexadecimal digits, new for each launch: what the server, its page and the shell share
    /// and nobody else knows.
    const std::string apiToken;
    /// The per-user data directory. It may not exist yet.
    const std::filesystem::path dataDir;
};

/// 32 bytes of the platform's secure random source, in hexadecimal.
[[nodiscard]] std::string makeApiToken(Platform& platform);

/// What takes the place of the user's home in screenshot mode, as the environment has it (it may be relative
/// or empty), or none when the mode is off or names nothing.
[[nodiscard]] std::optional<std::filesystem::path> screenshotHome(const Environment& environment);

/// Whether the environment switches screenshot mode on.
[[nodiscard]] bool screenshotModeIsOn(const Environment& environment);

} // namespace harbrook
