#pragma once

#include "platform/recording/Scheduler.h"
#include "tests/macos/running/messages/MessageLog.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace harbrook::running {

/// The machine that stands in for a Mac, for the length of one test: what the program said, time and threads
/// (those of the double: one runs at a time, and the clock moves when the test says so), and where its files
/// are.
class World {
public:
    World();
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    [[nodiscard]] static bool isThere();
    [[nodiscard]] static bool hasApplication();

    recording::Scheduler scheduler;
    MessageLog log;
    /// Stands before every path of the machine's.
    std::filesystem::path root;
    std::map<std::string, std::string> environment{{"HOME", "/Users/ada"}, {"PATH", "/usr/bin:/bin"}};
    /// What the user does while the application runs.
    std::function<void()> user;

    void note(std::string line);
    /// Something happened that must not.
    void fail(const std::string& what);

    /// Runs what is due and what the children have to say, until nothing is left.
    void settle();
    void advance(double seconds);
    /// While the main thread waits for something: what the others do meanwhile.
    void runWorkers();
    /// Lets children go on until `condition` holds; time stands still. Whether it came to hold.
    bool waitUntil(const std::function<bool()>& condition);

    /// On a worker: waits for something that a child does.
    void waitForChild(const std::function<bool()>& condition);

    /// Has `handler` called on a worker each time there is something to read, or the end of it.
    void watch(int descriptor, std::function<void()> handler);
    void stopWatching(int descriptor);
    [[nodiscard]] bool isWatching() const { return !watches_.empty(); }

    /// While something is described, nothing is noted.
    struct Describing {
        Describing();
        ~Describing();
    };
    [[nodiscard]] bool isDescribing() const { return describing_ > 0; }

    [[nodiscard]] std::filesystem::path placeOf(const std::filesystem::path& path) const;

private:
    struct Watch {
        std::function<void()> handler;
        bool isBusy = false;
    };
    /// Whether a handler was called.
    bool callReadable();
    /// Lets what the children have said in. They are real, and take as long as they like; the program hears
    /// of them only when it has nothing else to do, which makes the order the same every time.
    bool letChildrenIn();

    std::map<int, Watch> watches_;
    bool childrenMayComeIn_ = false;
    int describing_ = 0;
    int calls_ = 0;
};

[[nodiscard]] World& world();

} // namespace harbrook::running
