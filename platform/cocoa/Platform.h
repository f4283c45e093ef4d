#pragma once

#include "platform/Platform.h"
#include "platform/cocoa/Application.h"
#include "platform/cocoa/Dispatch.h"
#include "platform/cocoa/Files.h"
#include "platform/cocoa/Network.h"
#include "platform/cocoa/Notifications.h"
#include "platform/cocoa/Process.h"
#include "platform/cocoa/StatusItem.h"

namespace harbrook::cocoa {

class Workspace final : public harbrook::Workspace {
public:
    bool openURL(const URL& url) override;
};

class Platform final : public harbrook::Platform {
public:
    bool isMainThread() override;
    harbrook::DispatchQueue& mainQueue() override { return mainQueue_; }
    harbrook::DispatchQueue& globalQueue() override { return globalQueue_; }
    std::shared_ptr<harbrook::DispatchSemaphore> makeSemaphore(int count) override;
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

    harbrook::Application& sharedApplication() override;
    harbrook::Workspace& sharedWorkspace() override { return workspace_; }
    harbrook::StatusBar& systemStatusBar() override { return statusBar_; }
    harbrook::NotificationCenter& notificationCenter() override { return notificationCenter_; }
    harbrook::DistributedNotificationCenter& distributedNotificationCenter() override {
        return distributedNotificationCenter_;
    }
    std::shared_ptr<harbrook::Timer> scheduledTimerWithTimeInterval(
        double seconds, bool repeats, Block block) override;
    std::shared_ptr<WebView> makeWebView(Rect frame, const WebViewConfiguration& configuration) override;
    std::shared_ptr<Window> makeWindow(
        Rect contentRect, std::uint32_t styleMask, BackingStore backing, bool defer) override;
    std::shared_ptr<TextField> labelWithString(const std::string& text) override;
    void activateConstraints(const std::vector<LayoutConstraint>& constraints) override;
    std::shared_ptr<Alert> makeAlert() override;
    std::shared_ptr<OpenPanel> makeOpenPanel() override;
    std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path) override;

private:
    DispatchQueue mainQueue_{dispatch_get_main_queue()};
    DispatchQueue globalQueue_{dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0)};
    ProcessInfo processInfo_;
    FileManager fileManager_;
    Bundle bundle_;
    URLSession session_;
    /// Made when it is first asked for, which is what makes the platform's own.
    std::optional<Application> application_;
    Workspace workspace_;
    StatusBar statusBar_;
    NotificationCenter notificationCenter_;
    DistributedNotificationCenter distributedNotificationCenter_;
};

} // namespace harbrook::cocoa
