#include "app/Shell.h"
#include "platform/recording/Platform.h"
#include "tests/macos/running/scenarios/Shell.h"

#include <gtest/gtest.h>

namespace harbrook::running {

namespace {

std::optional<URL> urlOf(const Address& address) {
    return address ? URL::reported(*address) : std::nullopt;
}

/// A child takes a moment, in which the program goes on.
constexpr double childsPause = 0.1;

class DoubleShell final : public Shell {
public:
    DoubleShell() {
        constexpr std::uint8_t anyByte = 0xab;
        platform_->setRandomBytes(std::deque<std::uint8_t>(32, anyByte));
    }
    ~DoubleShell() override { platform_->shutDown(); }
    DoubleShell(const DoubleShell&) = delete;
    DoubleShell& operator=(const DoubleShell&) = delete;

    void installServer(int port) override {
        platform_->files().addExecutable("/opt/harbrook/resources/runtime/node");
        platform_->files().addFile("/opt/harbrook/resources/app/server.js");
        platform_->processes().programs["/opt/harbrook/resources/runtime/node"].output = {
            {0, "HARBROOK_PORT " + std::to_string(port) + "\n"}};
    }
    void installPictures() override {
        constexpr Size size = {36, 36};
        for (const auto* name : {"menubarTemplate@2x.png", "menubarIdleTemplate@2x.png"})
            platform_->addPicture(std::filesystem::path("/opt/harbrook/resources") / name, size);
    }
    void installNodeOfLoginShell(int port) override {
        platform_->files().addExecutable("/home/ada/bin/node");
        platform_->files().addFile("/opt/harbrook/resources/app/server.js");
        auto& programs = platform_->processes().programs;
        programs["/bin/zsh"] = {.output = {{childsPause, "/home/ada/bin/node\n"}}, .exitsAfter = childsPause};
        programs["/home/ada/bin/node"].output = {{0, "HARBROOK_PORT " + std::to_string(port) + "\n"}};
    }
    void addDataOfEarlierVersion() override { platform_->files().addDirectory("/home/ada/.ferncastle"); }
    void setVariable(const std::string& name, const std::string& value) override {
        platform_->processInfo().setVariable(name, value);
    }

    std::vector<std::string> run(const std::function<void()>& user) override {
        application().setLoop([&] {
            user();
            if (!application().isTerminated()) application().terminate();
            lines_ = platform_->log().lines();
        });
        // The test has asked for the application before the program does.
        platform_->log().clear();
        runShell(platform_);
        return lines_;
    }

    void settle() override { platform_->settle(); }
    void advance(double seconds) override { platform_->advance(seconds); }
    void waitForPage() override {
        advance(childsPause);
        EXPECT_FALSE(platform_->webView()->loads().empty());
    }

    void choose(const Titles& titles) override { application().simulateChoice(titles); }
    void openStatusMenu() override { menu_ = platform_->systemStatusBar().item()->simulateOpen(); }
    void chooseStatus(const Titles& titles) override { application().simulateChoice(menu_, titles); }
    bool reopen(bool hasVisibleWindows) override { return application().simulateReopen(hasVisibleWindows); }
    void closeLastWindow() override {
        platform_->window()->simulateClose();
        application().simulateLastWindowClosed();
    }
    void quit() override { application().terminate(); }
    // The double is not told of signals; they end the application.
    void receiveSignal(int) override { application().terminate(); }
    void resize(Size size) override { platform_->window()->simulateResize(size); }
    void enterFullScreen() override { platform_->window()->simulateEnterFullScreen(); }
    void exitFullScreen() override { platform_->window()->simulateExitFullScreen(); }
    void setCurrentEvent(std::optional<EventType> type) override { application().setCurrentEvent(type); }
    void endSheet(long response, const std::optional<std::string>& choice) override {
        auto& open = platform_->sheets().open;
        if (choice) std::dynamic_pointer_cast<recording::OpenPanel>(open.front())->setChoice(*choice);
        platform_->sheets().simulateEnd(response);
    }

    void post(const std::string& channel, const Value& body) override {
        platform_->webView()->simulateMessage(channel, body);
    }
    bool navigate(const Address& address) override {
        return platform_->webView()->simulateNavigation(urlOf(address)) == NavigationActionPolicy::allow;
    }
    bool openWindow(const Address& address) override {
        return platform_->webView()->simulateNewWindow(urlOf(address)) != nullptr;
    }
    void failProvisionally() override { platform_->webView()->simulateFailedProvisionalNavigation("no"); }
    void failLoading() override { platform_->webView()->simulateFailedNavigation("no"); }
    void showAlert(const std::string& message, std::function<void()> answered) override {
        platform_->webView()->simulateAlert(message, std::move(answered));
    }
    void askConfirmation(const std::string& message, std::function<void(bool)> answered) override {
        platform_->webView()->simulateConfirm(message, std::move(answered));
    }
    void setScripts(std::function<std::optional<Value>(const std::string&)> evaluate) override {
        platform_->webView()->evaluate = std::move(evaluate);
    }
    void notify(const std::string& name, const Value::Dictionary& userInfo) override {
        platform_->distributedNotificationCenter().simulateNotification(name, userInfo);
    }
    void answer(int status, const std::string& body) override {
        platform_->session().open().front()->answer(status, body);
    }

private:
    recording::Application& application() { return platform_->sharedApplication(); }

    std::shared_ptr<recording::Platform> platform_ = std::make_shared<recording::Platform>();
    std::vector<std::string> lines_;
    Menu menu_;
};

} // namespace

std::unique_ptr<Shell> makeDoubleShell() {
    return std::make_unique<DoubleShell>();
}

} // namespace harbrook::running
