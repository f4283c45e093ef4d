#include "app/Globals.h"

#include "app/Invariant.h"

namespace harbrook {

namespace {

std::filesystem::path baseDirectory(Platform& platform) {
    auto& files = platform.fileManager();
    const auto home = screenshotHome(platform.processInfo().environment());
    // A relative path counts from the working directory, and an empty one is that directory.
    return home ? files.currentDirectoryPath() / *home : files.homeDirectoryForCurrentUser();
}

std::filesystem::path makeDataDir(Platform& platform) {
    const auto base = baseDirectory(platform);
    auto dataDir = base / ".harbrook";
    const auto earlierDir = base / ".ferncastle";
    auto& files = platform.fileManager();
    if (!files.fileExistsAtPath(dataDir) && files.fileExistsAtPath(earlierDir)) {
        files.moveItemAtURL(earlierDir, dataDir);
    }
    return dataDir;
}

} // namespace

Globals::Globals(Platform& platform)
    : baseURL_(required(URL::URLWithString("http://localhost:1/"))),
      apiToken(makeApiToken(platform)),
      dataDir(makeDataDir(platform)) {}

URL Globals::baseURL() const {
    const std::scoped_lock lock(baseURLMutex_);
    return baseURL_;
}

void Globals::setBaseURL(URL url) {
    const std::scoped_lock lock(baseURLMutex_);
    baseURL_ = std::move(url);
}

std::string makeApiToken(Platform& platform) {
    constexpr int byteCount = 32;
    constexpr std::string_view digits = "0123456789abcdef";
    std::string token;
    for (int i = 0; i < byteCount; ++i) {
        const auto byte = platform.secureRandomByte();
        token += digits[byte >> 4];
        token += digits[byte & 15];
    }
    return token;
}

bool screenshotModeIsOn(const Environment& environment) {
    const auto shots = environment.find("HARBROOK_SHOTS");
    return shots != environment.end() && shots->second == "1";
}

std::optional<std::filesystem::path> screenshotHome(const Environment& environment) {
    const auto home = environment.find("HARBROOK_SHOTS_HOME");
    if (!screenshotModeIsOn(environment) || home == environment.end()) return std::nullopt;
    return home->second;
}

} // namespace harbrook
