#include "tests/contract/gtk/GtkDesktop.h"

#include "tests/contract/gtk/PrivateDisplay.h"
#include "tests/contract/gtk/ScriptedServer.h"

#include <gio/gio.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace harbrook::contract {

namespace {

double monotonicSeconds() {
    return static_cast<double>(g_get_monotonic_time()) / G_USEC_PER_SEC;
}

class GtkDesktop final : public Desktop {
public:
    Platform& platform() override { return gtkPlatform(); }
    bool runUntil(const std::function<bool()>& condition) override { return runMainLoopUntil(condition); }
    void pass(double seconds) override {
        static_cast<void>(runMainLoopUntil([] { return false; }, seconds));
    }
    double now() override { return monotonicSeconds(); }

    std::optional<std::string> provideDisplay() override {
        if (underThreadSanitizer) return threadsOfTheToolkit;
        static const PrivateDisplay display;
        // Windows belong to an application that has started up.
        static_cast<void>(platform().sharedApplication());
        g_application_register(g_application_get_default(), nullptr, nullptr);
        return std::nullopt;
    }

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
        return {ScriptedServer::answer(answer.status, answer.body), answer.delay};
    }

    TemporaryDirectory directory_;
    TemporaryDirectory programsDirectory_;
    int programs_ = 0;
    std::mutex mutex_;
    std::map<std::string, Answer> answers_;
    ScriptedServer server_{[this](const ScriptedServer::Request& request) { return reply(request); }};
};

} // namespace

std::unique_ptr<Desktop> makeGtkDesktop() {
    return std::make_unique<GtkDesktop>();
}

Platform& gtkPlatform() {
    static std::string name = "harbrook";
    static std::array<char*, 2> arguments{name.data(), nullptr};
    static const auto platform = makePlatform(1, arguments.data());
    return *platform;
}

bool runMainLoopUntil(const std::function<bool()>& condition, double seconds) {
    const double deadline = monotonicSeconds() + seconds;
    // Conditions that workers bring about wake no loop; looking again now and then is soon enough.
    constexpr unsigned interval = 5;
    const unsigned tick = g_timeout_add(
        interval, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    bool holds = false;
    while (!(holds = condition()) && monotonicSeconds() < deadline)
        g_main_context_iteration(nullptr, TRUE);
    g_source_remove(tick);
    return holds;
}

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "harbrook-test-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary directory");
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::optional<std::string> readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeScript(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path) << "#!/bin/sh\n" << text;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

} // namespace harbrook::contract
