#include "tests/macos/running/World.h"

#include "tests/macos/running/messages/Properties.h"
#include "tests/macos/running/runtime/References.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <utility>

namespace harbrook::running {

namespace {

World* current = nullptr;

bool isReadable(int descriptor, int milliseconds = 0) {
    pollfd entry{descriptor, POLLIN, 0};
    return poll(&entry, 1, milliseconds) > 0;
}

} // namespace

World::World() {
    current = this;
    restartNumbers();
}

World::~World() {
    scheduler.shutDown();
    current = nullptr;
}

bool World::isThere() {
    return current != nullptr;
}

World& world() {
    return *current;
}

void World::note(std::string line) {
    log.note((scheduler.isMainThread() ? "" : "    ") + std::move(line));
}

void World::fail(const std::string& what) {
    ADD_FAILURE() << what;
}

void World::settle() {
    const AutoreleasePool pool;
    constexpr int roundLimit = 2'000;
    for (int round = 0; round < roundLimit; ++round) {
        scheduler.settle();
        if (!letChildrenIn()) return;
    }
    watches_.clear();
    fail("a stream never comes to its end: its handler is called again and again");
}

void World::advance(double seconds) {
    settle();
    const AutoreleasePool pool;
    scheduler.advance(seconds);
    settle();
}

void World::runWorkers() {
    scheduler.runWorkers();
    letChildrenIn();
}

bool World::letChildrenIn() {
    childrenMayComeIn_ = true;
    const bool any = callReadable() || !scheduler.runnableWorkers().empty();
    scheduler.runWorkers();
    childrenMayComeIn_ = false;
    return any;
}

void World::waitForChild(const std::function<bool()>& condition) {
    scheduler.blockWorker([this, condition] { return childrenMayComeIn_ && condition(); });
}

bool World::waitUntil(const std::function<bool()>& condition) {
    constexpr int patience = 20'000;
    for (int waited = 0; waited < patience; ++waited) {
        settle();
        if (condition()) return true;
        poll(nullptr, 0, 1);
    }
    return false;
}

void World::watch(int descriptor, std::function<void()> handler) {
    watches_[descriptor] = {std::move(handler)};
}

void World::stopWatching(int descriptor) {
    watches_.erase(descriptor);
}

bool World::callReadable() {
    bool any = false;
    for (auto& [descriptor, watch] : watches_) {
        if (watch.isBusy || !isReadable(descriptor)) continue;
        watch.isBusy = true;
        any = true;
        scheduler.addWorker(
            "readable " + std::to_string(++calls_), [this, descriptor, handler = watch.handler] {
                const AutoreleasePool pool;
                handler();
                if (const auto found = watches_.find(descriptor); found != watches_.end())
                    found->second.isBusy = false;
            });
    }
    return any;
}

std::filesystem::path World::placeOf(const std::filesystem::path& path) const {
    return root.empty() || !path.is_absolute() ? path : root / path.relative_path();
}

World::Describing::Describing() {
    ++world().describing_;
}

World::Describing::~Describing() {
    --world().describing_;
}

} // namespace harbrook::running
