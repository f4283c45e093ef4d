#include "platform/recording/Platform.h"
#include "tests/contract/Desktop.h"

#include <map>
#include <set>
#include <utility>

namespace harbrook::contract {

namespace {

constexpr double patience = 30;
/// How far the clock moves between two looks at a condition.
constexpr double step = 0.005;

/// The double that the unit tests run on, in its own virtual time.
class RecordingDesktop final : public Desktop {
public:
    RecordingDesktop() { platform_.files().addDirectory(directory()); }
    ~RecordingDesktop() override { platform_.shutDown(); }
    RecordingDesktop(const RecordingDesktop&) = delete;
    RecordingDesktop& operator=(const RecordingDesktop&) = delete;

    Platform& platform() override { return platform_; }

    bool runUntil(const std::function<bool()>& condition) override {
        const double end = now() + patience;
        for (platform_.settle();; platform_.advance(step)) {
            if (answerNewRequests()) platform_.settle();
            if (condition()) return true;
            if (now() >= end) return false;
        }
    }

    void pass(double seconds) override {
        platform_.settle();
        answerNewRequests();
        platform_.advance(seconds);
    }

    double now() override { return platform_.now(); }

    std::optional<std::string> provideDisplay() override { return std::nullopt; }

    std::filesystem::path directory() override { return "/home/ada/contract"; }
    std::optional<std::string> contents(const std::filesystem::path& path) override {
        return platform_.files().contents(path);
    }

    std::filesystem::path makeProgram(const Program& program) override {
        const auto path = "/opt/program" + std::to_string(++programs_);
        recording::Program scripted;
        if (!program.output.empty()) scripted.output = {{0, program.output}};
        if (!program.errorOutput.empty()) scripted.errorOutput = {{0, program.errorOutput}};
        if (!program.runsUntilTerminated) scripted.exitsAfter = 0;
        platform_.files().addExecutable(path);
        platform_.processes().programs[path] = scripted;
        return path;
    }

    URL serve(const Answer& answer) override {
        const auto address = "http://localhost:8080/" + std::to_string(answers_.size());
        answers_.emplace(address, answer);
        return *URL::URLWithString(address);
    }

private:
    /// Plays the server: whether there was anything to answer.
    bool answerNewRequests() {
        bool any = false;
        for (const auto& exchange : platform_.session().open()) {
            const auto found = answers_.find(exchange->request().url.absoluteString());
            if (found == answers_.end() || !seen_.insert(exchange).second) continue;
            platform_.scheduler().addOutsideEvent(found->second.delay, [exchange, answer = found->second] {
                if (answer.ending == Ending::whole) return exchange->answer(answer.status, answer.body);
                exchange->answerInPart(answer.status, answer.body);
                if (answer.ending == Ending::cutOff) exchange->fail("The network connection was lost.");
            });
            any = true;
        }
        return any;
    }

    recording::Platform platform_;
    int programs_ = 0;
    std::map<std::string, Answer> answers_;
    std::set<std::shared_ptr<recording::Exchange>> seen_;
};

} // namespace

Factory implementation() {
    return {"recording", std::make_unique<RecordingDesktop>};
}

} // namespace harbrook::contract
