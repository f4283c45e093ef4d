#include "platform/cocoa/Platform.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Panels.h"
#include "platform/cocoa/View.h"
#include "platform/cocoa/WebView.h"
#include "platform/cocoa/Window.h"

#import <Security/Security.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace harbrook::cocoa {

namespace {

std::shared_ptr<FileHandle> wrap(NSFileHandle* _Nullable handle) {
    return handle ? std::make_shared<FileHandle>(handle) : nullptr;
}

} // namespace

bool Workspace::openURL(const URL& url) {
    NSURL* const native = toNSURL(url);
    return native && [NSWorkspace.sharedWorkspace openURL:native];
}

harbrook::Application& Platform::sharedApplication() {
    return application_ ? *application_ : application_.emplace();
}

bool Platform::isMainThread() {
    return NSThread.isMainThread;
}

std::shared_ptr<harbrook::DispatchSemaphore> Platform::makeSemaphore(int count) {
    return std::make_shared<DispatchSemaphore>(count);
}

std::shared_ptr<harbrook::Task> Platform::makeTask() {
    return std::make_shared<Task>();
}

std::shared_ptr<harbrook::Pipe> Platform::makePipe() {
    return std::make_shared<Pipe>();
}

std::shared_ptr<harbrook::FileHandle> Platform::fileHandleForWritingToURL(const std::filesystem::path& path) {
    return wrap([NSFileHandle fileHandleForWritingToURL:fileURL(path) error:nil]);
}

std::shared_ptr<harbrook::FileHandle> Platform::fileHandleWithNullDevice() {
    return wrap(NSFileHandle.fileHandleWithNullDevice);
}

std::uint8_t Platform::secureRandomByte() {
    std::uint8_t byte = 0;
    if (SecRandomCopyBytes(kSecRandomDefault, sizeof byte, &byte) != 0) std::abort();
    return byte;
}

std::shared_ptr<harbrook::Timer> Platform::scheduledTimerWithTimeInterval(
    double seconds, bool repeats, Block block) {
    return std::make_shared<Timer>(seconds, repeats, std::move(block));
}

std::shared_ptr<harbrook::WebView> Platform::makeWebView(
    Rect frame, const WebViewConfiguration& configuration) {
    return std::make_shared<WebView>(frame, configuration);
}

std::shared_ptr<harbrook::Window> Platform::makeWindow(
    Rect contentRect, std::uint32_t styleMask, BackingStore backing, bool defer) {
    return std::make_shared<Window>([[NSWindow alloc]
        initWithContentRect:toNSRect(contentRect)
                  styleMask:static_cast<NSWindowStyleMask>(styleMask)
                    backing:static_cast<NSBackingStoreType>(backing)
                      defer:defer]);
}

std::shared_ptr<harbrook::TextField> Platform::labelWithString(const std::string& text) {
    return std::make_shared<TextField>([NSTextField labelWithString:toNSString(text)]);
}

void Platform::activateConstraints(const std::vector<LayoutConstraint>& constraints) {
    cocoa::activateConstraints(constraints);
}

std::shared_ptr<harbrook::Alert> Platform::makeAlert() {
    return std::make_shared<Alert>();
}

std::shared_ptr<harbrook::OpenPanel> Platform::makeOpenPanel() {
    return std::make_shared<OpenPanel>();
}

std::optional<Image> Platform::imageWithContentsOfURL(const std::filesystem::path& path) {
    NSImage* const image = [[NSImage alloc] initWithContentsOfURL:fileURL(path)];
    if (!image) return std::nullopt;
    return Image{{image.size.width, image.size.height}, false, path, {}};
}

} // namespace harbrook::cocoa

namespace harbrook {

std::shared_ptr<Platform> makePlatform(int argc, char** argv) {
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        std::puts("Harbrook " HARBROOK_VERSION);
        std::exit(EXIT_SUCCESS);
    }
    return std::make_shared<cocoa::Platform>();
}

} // namespace harbrook
