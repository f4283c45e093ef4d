#include "server/NodeDiscovery.h"

#include "server/Text.h"

#include <array>

namespace harbrook {

namespace {

/// What the login shell says that "node" is, trimmed; empty when it says nothing.
std::string nodeOfLoginShell(Platform& platform) {
    const auto output = platform.makePipe();
    const auto errors = platform.makePipe();
    const auto task = platform.makeTask();
    task->setExecutableURL(platform.processInfo().loginShell());
    task->setArguments({"-lc", "command -v node"});
    task->setStandardOutput(output);
    task->setStandardError(errors);
    // A profile that has much to say must not fill a pipe that nobody empties, and then wait for ever.
    errors->fileHandleForReading()->setReadabilityHandler(
        [](FileHandle& handle) { (void)handle.availableData(); });
    if (task->launchAndReturnError()) return {};
    const auto text = output->fileHandleForReading()->readDataToEndOfFile();
    task->waitUntilExit();
    if (!isValidUTF8(text)) return {};
    return std::string(trimmed(text));
}

} // namespace

std::optional<std::string> findNode(Platform& platform) {
    auto& files = platform.fileManager();
    if (const auto resource = platform.mainBundle().URLForResource("node", "", "runtime")) {
        if (files.isExecutableFileAtPath(*resource)) return resource->string();
    }
    if (auto node = nodeOfLoginShell(platform); !node.empty() && files.isExecutableFileAtPath(node))
        return node;
    for (const auto* path : std::array{"/opt/homebrew/bin/node", "/usr/local/bin/node"}) {
        if (files.isExecutableFileAtPath(path)) return path;
    }
    return std::nullopt;
}

} // namespace harbrook
