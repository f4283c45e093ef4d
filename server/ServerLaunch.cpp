#include "server/ServerLaunch.h"

#include "app/AppDelegate.h"
#include "app/Invariant.h"
#include "server/NodeDiscovery.h"
#include "server/ServerOutput.h"

namespace harbrook {

namespace {

constexpr double readinessTimeout = 10.0;
constexpr const char* preferredPort = "47545";

constexpr const char* nodeNotFound = "Node.js was not found. On Intel Macs, install Node.js from nodejs.org "
                                     "(or: brew install node), then reopen Harbrook.";
constexpr const char* filesMissing = "The app is missing its files. Please reinstall Harbrook.";
constexpr const char* couldNotStart = "Could not start the server: ";
constexpr const char* didNotStart = "The server did not start. See ~/.harbrook/logs/server.log";

/// The log of this launch, empty and open for writing, or null. Without a log the launch goes on.
std::shared_ptr<FileHandle> openLog(Platform& platform, const std::filesystem::path& dataDir) {
    const auto directory = dataDir / "logs";
    const auto path = directory / "server.log";
    platform.fileManager().createDirectoryAtURL(directory);
    platform.fileManager().createFileAtPath(path);
    auto log = platform.fileHandleForWritingToURL(path);
    if (log) log->seekToEndOfFile();
    return log;
}

std::shared_ptr<Task> makeServerTask(
    Platform& platform, const Globals& globals, const std::string& node, const std::filesystem::path& script,
    const std::shared_ptr<FileHandle>& log, const std::shared_ptr<Pipe>& output) {
    auto& process = platform.processInfo();
    auto task = platform.makeTask();
    task->setExecutableURL(node);
    task->setArguments({script.string()});
    task->setCurrentDirectoryURL(script.parent_path());
    task->setStandardOutput(output);
    task->setStandardError(log ? log : platform.fileHandleWithNullDevice());
    // Never written to: it ends when the shell does, which is how the server notices.
    task->setStandardInput(platform.makePipe());
    task->setEnvironment(
        serverEnvironment(process.environment(), globals.apiToken, process.processIdentifier()));
    return task;
}

} // namespace

Environment serverEnvironment(Environment environment, const std::string& apiToken, int shellProcess) {
    if (const auto home = screenshotHome(environment)) environment["HOME"] = home->string();
    environment["HARBROOK_PORT"] = preferredPort;
    environment["HARBROOK_PORT_FALLBACK"] = "1";
    environment["HARBROOK_TOKEN"] = apiToken;
    environment["HARBROOK_PARENT"] = std::to_string(shellProcess);
    return environment;
}

std::optional<std::string> launchServer(Platform& platform, Globals& globals, ServerSlot& slot) {
    const auto node = findNode(platform);
    if (!node) return nodeNotFound;
    const auto script = platform.mainBundle().URLForResource("server", "js", "app");
    if (!script) return filesMissing;

    const auto log = openLog(platform, globals.dataDir);
    const auto outputPipe = platform.makePipe();
    const auto task = makeServerTask(platform, globals, *node, *script, log, outputPipe);
    const auto ready = platform.makeSemaphore(0);
    const auto output = std::make_shared<ServerOutput>(log, ready);
    outputPipe->fileHandleForReading()->setReadabilityHandler(
        [output](FileHandle& handle) { output->handle(handle); });

    if (const auto error = slot.launch(task)) return couldNotStart + error->localizedDescription;
    if (!ready->wait(readinessTimeout)) return didNotStart;

    const auto port = output->announcedPort();
    globals.setServerPort(port);
    globals.setBaseURL(required(URL::URLWithString("http://localhost:" + std::to_string(port) + "/")));
    return std::nullopt;
}

void AppDelegate::startServerIfNeeded(Completion completion) {
    platform_->globalQueue().async(
        [platform = platform_, globals = globals_, slot = server, completion = std::move(completion)] {
            const auto failure = launchServer(*platform, *globals, *slot);
            platform->mainQueue().async(
                [completion, failure] { completion(!failure.has_value(), failure.value_or("")); });
        });
}

} // namespace harbrook
