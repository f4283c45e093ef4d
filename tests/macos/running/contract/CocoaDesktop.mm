#include "tests/contract/Desktop.h"
#include "tests/macos/running/Surroundings.h"
#include "tests/macos/running/foundation/Session.h"

#include <gmock/gmock.h>
#include <poll.h>

#include <fstream>
#include <set>
#include <sstream>

namespace harbrook::contract {

namespace {

using namespace harbrook::running;

constexpr double patience = 30;
/// How far the clock moves between two looks at a condition.
constexpr double step = 0.005;

/// The Cocoa side on what stands in for macOS: a clock of the test's own, and real files and children.
class CocoaDesktop final : public Desktop {
public:
    CocoaDesktop() {
        auto name = (std::filesystem::temp_directory_path() / "harbrook-cocoa-XXXXXX").string();
        directory_ = mkdtemp(name.data());
        world_.environment["HOME"] = directory_;
        char program[] = "Harbrook";
        char* arguments[] = {program, nullptr};
        platform_ = makePlatform(1, arguments);
    }
    ~CocoaDesktop() override {
        platform_.reset();
        pool_.reset();
        EXPECT_TRUE(world_.waitUntil([this] { return !world_.isWatching(); }))
            << "a stream never comes to its end";
        world_.scheduler.shutDown();
        forgetSurroundings();
        EXPECT_THAT(livingObjects(), testing::IsEmpty());
        std::filesystem::remove_all(directory_);
    }
    CocoaDesktop(const CocoaDesktop&) = delete;
    CocoaDesktop& operator=(const CocoaDesktop&) = delete;

    Platform& platform() override { return *platform_; }

    bool runUntil(const std::function<bool()>& condition) override {
        const double end = now() + patience;
        while (true) {
            turn();
            if (condition()) return true;
            if (now() >= end) return false;
            world_.advance(step);
            // For the children, whose time is the machine's.
            poll(nullptr, 0, 1);
        }
    }

    void pass(double seconds) override {
        turn();
        world_.advance(seconds);
        turn();
    }

    double now() override { return world_.scheduler.now(); }
    std::optional<std::string> provideDisplay() override { return std::nullopt; }
    std::filesystem::path directory() override { return directory_; }

    std::optional<std::string> contents(const std::filesystem::path& path) override {
        if (!std::filesystem::is_regular_file(path)) return std::nullopt;
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    std::filesystem::path makeProgram(const Program& program) override {
        const auto path = directory_ / ("program" + std::to_string(++programs_));
        std::ofstream file(path);
        file << "#!/bin/sh\nprintf '%s' '" << program.output << "'\nprintf '%s' '" << program.errorOutput
             << "' >&2\n";
        if (program.runsUntilTerminated) file << "exec sleep 1000\n";
        file.close();
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    URL serve(const Answer& answer) override {
        const auto address = "http://localhost:8080/" + std::to_string(answers_.size());
        answers_.emplace(address, answer);
        return *URL::URLWithString(address);
    }

private:
    /// One turn of the run loop: what was autoreleased goes.
    void turn() {
        pool_.emplace();
        world_.settle();
        for (const auto& exchange : openExchanges()) {
            const auto found = answers_.find(exchange->address);
            if (found == answers_.end() || !seen_.insert(exchange).second) continue;
            world_.scheduler.addOutsideEvent(found->second.delay, [exchange, answer = found->second] {
                if (answer.ending == Ending::whole) return exchange->answer(answer.status, answer.body);
                exchange->answerInPart(answer.status, answer.body);
                if (answer.ending == Ending::cutOff) exchange->fail("The network connection was lost.", {});
            });
        }
        world_.settle();
    }

    World world_;
    std::optional<AutoreleasePool> pool_{std::in_place};
    std::filesystem::path directory_;
    std::shared_ptr<Platform> platform_;
    int programs_ = 0;
    std::map<std::string, Answer> answers_;
    std::set<std::shared_ptr<Exchange>> seen_;
};

} // namespace

Factory implementation() {
    return {"cocoa", [] { return std::make_unique<CocoaDesktop>(); }};
}

} // namespace harbrook::contract
