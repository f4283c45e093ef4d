#include "platform/cocoa/Frameworks.h"
#include "tests/contract/Desktop.h"
#include "tests/contract/cocoa/LoopbackServer.h"
#include "tests/support/TemporaryFiles.h"

#include <chrono>
#include <fstream>

namespace harbrook::contract {

namespace {

constexpr double patience = 30;
/// How long the run loop may wait for something to do before the condition is looked at again.
constexpr double step = 0.01;

/// The platform of this process; there is only ever one.
Platform& cocoaPlatform() {
    static const auto platform = makePlatform(0, nullptr);
    return *platform;
}

/// The real desktop, in real time. Its windows are never shown.
class CocoaDesktop final : public Desktop {
public:
    Platform& platform() override { return cocoaPlatform(); }

    bool runUntil(const std::function<bool()>& condition) override { return run(condition, patience); }
    void pass(double seconds) override {
        static_cast<void>(run([] { return false; }, seconds));
    }
    double now() override {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }

    std::optional<std::string> provideDisplay() override {
        static_cast<void>(platform().sharedApplication());
        return std::nullopt;
    }

    std::filesystem::path directory() override { return directory_.path(); }
    std::optional<std::string> contents(const std::filesystem::path& path) override {
        return tests::readFile(path);
    }

    std::filesystem::path makeProgram(const Program& program) override {
        auto path = programsDirectory_.path() / ("program" + std::to_string(++programs_));
        std::ofstream(path.string() + ".out") << program.output;
        std::ofstream(path.string() + ".err") << program.errorOutput;
        tests::writeScript(
            path, "cat \"$0.out\"\ncat \"$0.err\" >&2\n" +
                      std::string(program.runsUntilTerminated ? "exec sleep 600\n" : ""));
        return path;
    }

    URL serve(const Answer& answer) override { return *URL::URLWithString(server_.addressOf(answer)); }

private:
    [[nodiscard]] bool run(const std::function<bool()>& condition, double seconds) {
        const double end = now() + seconds;
        while (!condition()) {
            if (now() >= end) return false;
            @autoreleasepool {
                [NSRunLoop.currentRunLoop runMode:NSDefaultRunLoopMode
                                       beforeDate:[NSDate dateWithTimeIntervalSinceNow:step]];
            }
        }
        return true;
    }

    tests::TemporaryDirectory directory_;
    tests::TemporaryDirectory programsDirectory_;
    int programs_ = 0;
    LoopbackServer server_;
};

} // namespace

Factory implementation() {
    return {"cocoa", std::make_unique<CocoaDesktop>};
}

} // namespace harbrook::contract
