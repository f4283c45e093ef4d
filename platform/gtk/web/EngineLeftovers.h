#pragma once

#include <filesystem>

namespace harbrook::gtk {

/// Removes what the engine has left in the user's run-time folder for programs that are gone. For every
/// process that it puts into a sandbox it writes a folder ".flatpak/webkit-<process>-<number>" there, by
/// which portals recognise the process, and never takes one away (WebKitGTK 2.50); so each start of the shell
/// would add two. Any thread.
void removeEngineLeftovers(const std::filesystem::path& runtimeFolder);

} // namespace harbrook::gtk
