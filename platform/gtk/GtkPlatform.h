#pragma once

#include "platform/Platform.h"
#include "platform/gtk/app/Application.h"
#include "platform/gtk/bus/DistributedNotificationCenter.h"
#include "platform/gtk/foundation/Bundle.h"
#include "platform/gtk/foundation/ContextQueue.h"
#include "platform/gtk/foundation/FileManager.h"
#include "platform/gtk/foundation/GlobalQueue.h"
#include "platform/gtk/foundation/NotificationCenter.h"
#include "platform/gtk/foundation/ProcessInfo.h"
#include "platform/gtk/foundation/URLSession.h"
#include "platform/gtk/foundation/Workspace.h"
#include "platform/gtk/status/StatusBar.h"
#include "platform/gtk/web/RenderingPolicy.h"

#include <optional>
#include <thread>

namespace harbrook::gtk {

/// All services of the Linux desktop. Made on the main thread, which is the one that runs the default main
/// context.
class GtkPlatform final : public Platform {
public:
    explicit GtkPlatform(Start start);

    bool isMainThread() override { return std::this_thread::get_id() == mainThread_; }
    DispatchQueue& mainQueue() override { return mainQueue_; }
    DispatchQueue& globalQueue() override { return globalQueue_; }
    std::shared_ptr<DispatchSemaphore> makeSemaphore(int count) override;
    harbrook::ProcessInfo& processInfo() override { return processInfo_; }
    harbrook::FileManager& fileManager() override { return fileManager_; }
    harbrook::Bundle& mainBundle() override { return bundle_; }
    harbrook::URLSession& sharedSession() override { return session_; }
    std::shared_ptr<harbrook::Task> makeTask() override;
    std::shared_ptr<harbrook::Pipe> makePipe() override;
    std::shared_ptr<harbrook::FileHandle> fileHandleForWritingToURL(
        const std::filesystem::path& path) override;
    std::shared_ptr<harbrook::FileHandle> fileHandleWithNullDevice() override;
    std::uint8_t secureRandomByte() override;

    harbrook::Application& sharedApplication() override { return application(); }
    harbrook::Workspace& sharedWorkspace() override { return workspace_; }
    harbrook::StatusBar& systemStatusBar() override { return statusBar_; }
    harbrook::NotificationCenter& notificationCenter() override { return notificationCenter_; }
    harbrook::DistributedNotificationCenter& distributedNotificationCenter() override {
        return distributedNotificationCenter_;
    }
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

private:
    /// Made when it is first asked for.
    Application& application() {
        return application_ ? *application_
                            : application_.emplace(start_, [this] { return statusBar_.showsItem(); });
    }

    Start start_;
    std::thread::id mainThread_ = std::this_thread::get_id();
    /// Before all that may change the environment.
    ProcessInfo processInfo_;
    /// Before there are other threads.
    RenderingPolicy renderingPolicy_;
    ContextQueue mainQueue_{nullptr};
    GlobalQueue globalQueue_;
    FileManager fileManager_;
    Bundle bundle_{resourceDirectory(currentExecutable())};
    URLSession session_{globalQueue_};
    Workspace workspace_{processInfo_.environment()};
    NotificationCenter notificationCenter_;
    std::optional<Application> application_;
    StatusBar statusBar_;
    DistributedNotificationCenter distributedNotificationCenter_;
};

} // namespace harbrook::gtk
