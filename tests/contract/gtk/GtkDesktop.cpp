#include "tests/contract/Desktop.h"
#include "tests/gtk/support/RealPlatform.h"
#include "tests/gtk/support/ScriptedServer.h"
#include "tests/support/TemporaryFiles.h"

#include <fstream>
#include <map>
#include <mutex>

namespace harbrook::contract {

namespace {

using namespace tests;

/// The real desktop, in real time. Whatever needs a display gets a private one.
class GtkDesktop final : public Desktop {
public:
    Platform& platform() override { return gtkPlatform(); }
    bool runUntil(const std::function<bool()>& condition) override { return runMainLoopUntil(condition); }
    void pass(double seconds) override {
        static_cast<void>(runMainLoopUntil([] { return false; }, seconds));
    }
    double now() override { return monotonicSeconds(); }

    std::optional<std::string> provideDisplay() override { return tests::provideDisplay(); }

    std::filesystem::path directory() override { return directory_.path(); }
    std::optional<std::string> contents(const std::filesystem::path& path) override { return readFile(path); }

    std::filesystem::path makeProgram(const Program& program) override {
        const auto name = "program" + std::to_string(++programs_);
        auto path = programsDirectory_.path() / name;
        std::ofstream(path.string() + ".out") << program.output;
        std::ofstream(path.string() + ".err") << program.errorOutput;
        writeScript(
            path, "cat \"$0.out\"\ncat \"$0.err\" >&2\n" +
                      std::string(program.runsUntilTerminated ? "exec sleep 600\n" : ""));
        return path;
    }

    URL serve(const Answer& answer) override {
        const auto path = "/" + std::to_string(answers_.size());
        const std::lock_guard lock(mutex_);
        answers_.emplace(path, answer);
        return *URL::URLWithString(server_.address(path));
    }

private:
    ScriptedServer::Reply reply(const ScriptedServer::Request& request) {
        const std::lock_guard lock(mutex_);
        const Answer& answer = answers_.at(request.target);
        if (answer.ending == Ending::whole)
            return {ScriptedServer::answer(answer.status, answer.body), answer.delay};
        auto bytes = ScriptedServer::answer(answer.status, answer.body + "?");
        bytes.pop_back();
        return {std::move(bytes), answer.delay, answer.ending == Ending::cutOff};
    }

    TemporaryDirectory directory_;
    TemporaryDirectory programsDirectory_;
    int programs_ = 0;
    std::mutex mutex_;
    std::map<std::string, Answer> answers_;
    ScriptedServer server_{[this](const ScriptedServer::Request& request) { return reply(request); }};
};

} // namespace

Factory implementation() {
    return {"gtk", std::make_unique<GtkDesktop>};
}

} // namespace harbrook::contract
