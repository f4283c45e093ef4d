#pragma once

#include "platform/Application.h"
#include "platform/Dispatch.h"
#include "platform/Files.h"
#include "platform/Image.h"
#include "platform/Network.h"
#include "platform/Notifications.h"
#include "platform/Panels.h"
#include "platform/Process.h"
#include "platform/StatusItem.h"
#include "platform/WebView.h"
#include "platform/Window.h"
#include "platform/Workspace.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

// The seam between the shell and a desktop. Everything above it is written once; everything below it gives
// each word its meaning on one system. The words are AppKit's, WebKit's and Foundation's, so that whoever
// knows those reads the shell without a dictionary.
//
// What is only described (a menu, a colour, a request, a drawing, a configuration) is a plain value that can
// be compared. What acts (a window, a timer, a child process) is an abstract class and comes from a factory
// here.
//
// How to add an operation:
//   1. declare it, with its contract, in the header of the thing it belongs to;
//   2. forward it in platform/cocoa and give it its meaning in platform/gtk;
//   3. note it in the log of platform/recording;
//   4. add a case to tests/contract that holds for all of them.

namespace harbrook {

/// The services of one desktop. Services live as long as the platform; made objects are the caller's.
class Platform {
public:
    virtual ~Platform() = default;

    // Any thread.
    [[nodiscard]] virtual bool isMainThread() = 0;
    [[nodiscard]] virtual DispatchQueue& mainQueue() = 0;
    /// The concurrent queue for work that may block.
    [[nodiscard]] virtual DispatchQueue& globalQueue() = 0;
    [[nodiscard]] virtual std::shared_ptr<DispatchSemaphore> makeSemaphore(int count) = 0;
    [[nodiscard]] virtual ProcessInfo& processInfo() = 0;
    [[nodiscard]] virtual FileManager& fileManager() = 0;
    [[nodiscard]] virtual Bundle& mainBundle() = 0;
    [[nodiscard]] virtual URLSession& sharedSession() = 0;
    [[nodiscard]] virtual std::shared_ptr<Task> makeTask() = 0;
    [[nodiscard]] virtual std::shared_ptr<Pipe> makePipe() = 0;
    /// Opens an existing file for writing, positioned at its start; null when that fails.
    [[nodiscard]] virtual std::shared_ptr<FileHandle> fileHandleForWritingToURL(
        const std::filesystem::path& path) = 0;
    /// A handle that reads as empty and swallows what is written to it.
    [[nodiscard]] virtual std::shared_ptr<FileHandle> fileHandleWithNullDevice() = 0;
    /// One byte of the system's cryptographically secure random source, uniform from 0 to 255. A source that
    /// fails stops the process.
    [[nodiscard]] virtual std::uint8_t secureRandomByte() = 0;

    // Main thread.
    /// Makes the application the first time it is asked for, and not before.
    [[nodiscard]] virtual Application& sharedApplication() = 0;
    [[nodiscard]] virtual Workspace& sharedWorkspace() = 0;
    [[nodiscard]] virtual StatusBar& systemStatusBar() = 0;
    [[nodiscard]] virtual NotificationCenter& notificationCenter() = 0;
    [[nodiscard]] virtual DistributedNotificationCenter& distributedNotificationCenter() = 0;
    [[nodiscard]] virtual std::shared_ptr<Timer> scheduledTimerWithTimeInterval(
        double seconds, bool repeats, Block block) = 0;
    [[nodiscard]] virtual std::shared_ptr<WebView> makeWebView(
        Rect frame, const WebViewConfiguration& configuration) = 0;
    /// The content rectangle excludes the title bar unless the style says that the content has the full size.
    /// The window is not shown yet.
    [[nodiscard]] virtual std::shared_ptr<Window> makeWindow(
        Rect contentRect, std::uint32_t styleMask, BackingStore backing, bool defer) = 0;
    [[nodiscard]] virtual std::shared_ptr<TextField> labelWithString(const std::string& text) = 0;
    virtual void activateConstraints(const std::vector<LayoutConstraint>& constraints) = 0;
    [[nodiscard]] virtual std::shared_ptr<Alert> makeAlert() = 0;
    [[nodiscard]] virtual std::shared_ptr<OpenPanel> makeOpenPanel() = 0;
    /// The picture in a file at its own size, or none when the file cannot be decoded as an image.
    [[nodiscard]] virtual std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path) = 0;
};

/// The platform this program was built for. Called once, first thing, on the main thread; the arguments are
/// those of the program. Throws nothing; a command line that only asks for a word (`--version`) is answered
/// there and ends the process.
[[nodiscard]] std::shared_ptr<Platform> makePlatform(int argc, char** argv);

} // namespace harbrook
