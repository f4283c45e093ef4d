#pragma once

#include "platform/Platform.h"
#include "platform/recording/Application.h"
#include "platform/recording/Dispatch.h"
#include "platform/recording/Files.h"
#include "platform/recording/Network.h"
#include "platform/recording/Notifications.h"
#include "platform/recording/Panels.h"
#include "platform/recording/Process.h"
#include "platform/recording/StatusItem.h"
#include "platform/recording/WebView.h"
#include "platform/recording/Window.h"
#include "platform/recording/World.h"

#include <deque>
#include <map>
#include <memory>
#include <random>
#include <vector>

// A desktop for tests. It notes what it is asked to do, in order, in `log`; it moves only when the test says
// so (`settle`, `advance`); and it refuses what a real desktop would refuse.
//
//     Platform platform;
//     platform.log().take();                        // what was done so far
//     platform.advance(3.0);                        // three seconds pass
//     platform.session().open()[0]->answer(200);    // the server answers
//     platform.settle();                            // everybody deals with it
//
// What the desktop, the user or another program does is called `simulate…`.

namespace harbrook::recording {

class Platform final : public harbrook::Platform {
public:
    Platform();
    ~Platform() override;

    bool isMainThread() override { return world_->scheduler.isMainThread(); }
    DispatchQueue& mainQueue() override { return mainQueue_; }
    DispatchQueue& globalQueue() override { return globalQueue_; }
    std::shared_ptr<DispatchSemaphore> makeSemaphore(int count) override;
    ProcessInfo& processInfo() override { return processInfo_; }
    FileManager& fileManager() override { return *files_; }
    Bundle& mainBundle() override { return bundle_; }
    URLSession& sharedSession() override { return session_; }
    std::shared_ptr<harbrook::Task> makeTask() override;
    std::shared_ptr<harbrook::Pipe> makePipe() override;
    std::shared_ptr<FileHandle> fileHandleForWritingToURL(const std::filesystem::path& path) override;
    std::shared_ptr<FileHandle> fileHandleWithNullDevice() override;
    std::uint8_t secureRandomByte() override;

    Application& sharedApplication() override;
    Workspace& sharedWorkspace() override;
    StatusBar& systemStatusBar() override;
    NotificationCenter& notificationCenter() override;
    DistributedNotificationCenter& distributedNotificationCenter() override;
    std::shared_ptr<harbrook::Timer> scheduledTimerWithTimeInterval(
        double seconds, bool repeats, Block block) override;
    std::shared_ptr<harbrook::WebView> makeWebView(
        Rect frame, const WebViewConfiguration& configuration) override;
    std::shared_ptr<harbrook::Window> makeWindow(
        Rect contentRect, std::uint32_t styleMask, BackingStore backing, bool defer) override;
    std::shared_ptr<harbrook::TextField> labelWithString(const std::string& text) override;
    void activateConstraints(const std::vector<LayoutConstraint>& constraints) override;
    std::shared_ptr<harbrook::Alert> makeAlert() override;
    std::shared_ptr<harbrook::OpenPanel> makeOpenPanel() override;
    std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path) override;

    // For the test.

    /// The application, without a question that would make it.
    [[nodiscard]] Application& application() { return application_; }
    [[nodiscard]] OperationLog& log() { return world_->log; }
    [[nodiscard]] Scheduler& scheduler() { return world_->scheduler; }
    void settle() { world_->scheduler.settle(); }
    void advance(double seconds) { world_->scheduler.advance(seconds); }
    [[nodiscard]] double now() const { return world_->scheduler.now(); }

    [[nodiscard]] FileManager& files() { return *files_; }
    [[nodiscard]] URLSession& session() { return session_; }
    [[nodiscard]] Processes& processes() { return processes_; }
    [[nodiscard]] Sheets& sheets() { return sheets_; }
    /// The window, web view, label or timer that was made last, if it still exists.
    [[nodiscard]] std::shared_ptr<Window> window() const { return window_.lock(); }
    [[nodiscard]] std::shared_ptr<WebView> webView() const { return webView_.lock(); }
    [[nodiscard]] std::shared_ptr<TextField> label() const { return label_.lock(); }
    [[nodiscard]] std::shared_ptr<Timer> timer() const { return timer_.lock(); }

    /// The bytes that the random source gives next; afterwards it is random again.
    void setRandomBytes(std::deque<std::uint8_t> bytes) { randomBytes_ = std::move(bytes); }
    [[nodiscard]] int randomBytesDrawn() const { return randomBytesDrawn_; }
    /// How windows that are made from now on lay out their title bars.
    void setTitlebarLayout(const TitlebarLayout& layout) { titlebarLayout_ = layout; }
    /// The frame that an earlier run left for windows that are made from now on.
    void setSavedFrame(Rect frame) { savedFrame_ = frame; }
    /// Makes the file at `path` decode as a picture of this size.
    void addPicture(const std::filesystem::path& path, Size size);

    /// Ends the run: blocked workers return, and what still waits to run is dropped. A test that uses workers
    /// calls it before its own objects go.
    void shutDown();

private:
    WorldPtr world_;
    MainQueue mainQueue_;
    GlobalQueue globalQueue_;
    ProcessInfo processInfo_;
    std::shared_ptr<FileManager> files_;
    Bundle bundle_;
    URLSession session_;
    Processes processes_;
    Application application_;
    Workspace workspace_;
    StatusBar statusBar_;
    NotificationCenter notificationCenter_;
    DistributedNotificationCenter distributedNotificationCenter_;
    Sheets sheets_;
    std::weak_ptr<Window> window_;
    std::weak_ptr<WebView> webView_;
    std::weak_ptr<TextField> label_;
    std::weak_ptr<Timer> timer_;
    int pipeCount_ = 0;
    TitlebarLayout titlebarLayout_;
    std::optional<Rect> savedFrame_;
    std::map<std::filesystem::path, Size> pictures_;
    std::mt19937 random_{20240229};
    std::deque<std::uint8_t> randomBytes_;
    int randomBytesDrawn_ = 0;
};

} // namespace harbrook::recording
