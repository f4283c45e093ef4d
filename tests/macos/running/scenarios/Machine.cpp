#include "tests/macos/running/scenarios/Machine.h"

#include "app/Shell.h"
#include "tests/macos/running/Surroundings.h"
#include "tests/macos/running/runtime/References.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace harbrook::running {

Machine::Machine() {
    auto name = (std::filesystem::temp_directory_path() / "harbrook-machine-XXXXXX").string();
    world.root = mkdtemp(name.data());
    std::filesystem::create_directories(world.placeOf("/Users/ada"));
}

Machine::~Machine() {
    std::filesystem::remove_all(world.root);
}

void Machine::addFile(const std::filesystem::path& path, const std::string& content) {
    const auto place = world.placeOf(path);
    std::filesystem::create_directories(place.parent_path());
    std::ofstream(place) << content;
}

void Machine::addProgram(const std::filesystem::path& path, const std::string& script) {
    addFile(path, "#!/bin/sh\n" + script);
    std::filesystem::permissions(world.placeOf(path), std::filesystem::perms::owner_all);
}

void Machine::installServer(int port, const std::filesystem::path& node) {
    addProgram(node, "echo HARBROOK_PORT " + std::to_string(port) + "\nexec sleep 1000\n");
    addFile("/Applications/Harbrook.app/Contents/Resources/app/server.js", "");
}

void Machine::waitForPage() {
    const auto asked = [this] {
        return std::ranges::any_of(world.log.lines(), [](const auto& line) {
            return line.find(" loadRequest: ") != std::string::npos;
        });
    };
    ASSERT_TRUE(world.waitUntil(asked));
}

void Machine::run(const std::function<void()>& user) {
    world.user = [&user] {
        user();
        EXPECT_EQ(observersLeftBehind(), 0) << "observers are left behind by what they observed";
    };
    {
        const AutoreleasePool pool;
        char name[] = "Harbrook";
        char* arguments[] = {name, nullptr};
        runShell(makePlatform(1, arguments));
    }
    // The children have ended; what they printed comes to its end, too.
    EXPECT_TRUE(world.waitUntil([this] { return !world.isWatching(); })) << "a stream never comes to its end";
    checkThatAllHasGone();
}

void Machine::checkThatAllHasGone() {
    world.scheduler.shutDown();
    // The program has let go of these. Whoever still holds them is held by the platform, and would be for
    // ever.
    for (const auto& object : livingObjects()) {
        if (object.starts_with("NSWindow#") || object.starts_with("WKWebView#"))
            ADD_FAILURE() << object << " is kept by something that the platform keeps";
    }
    forgetSurroundings();
    // What the program makes once and keeps for good is there after its first run.
    static const auto keptForGood = livingObjects();
    auto living = livingObjects();
    for (const auto& object : keptForGood) {
        const auto found = std::ranges::find(living, object);
        if (found != living.end()) living.erase(found);
    }
    for (const auto& object : living)
        ADD_FAILURE() << object << " is still there after the program has ended";
}

} // namespace harbrook::running
