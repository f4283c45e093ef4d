#pragma once

#include <filesystem>

namespace harbrook::gtk {

/// Removes what the engine has left in the user's run-time folder for earlier starts of this program that are
/// gone, and notes this start for those to come (an empty file "harbrook/<process>"). For every process that
/// it puts into a sandbox the engine writes a folder ".flatpak/webkit-<process>-<number>" there, by which
/// portals recognise the process, and never takes one away (WebKitGTK 2.50); so each start would add two.
/// Those of other programs are theirs. Any thread.
void removeEngineLeftovers(const std::filesystem::path& runtimeFolder);

} // namespace harbrook::gtk
