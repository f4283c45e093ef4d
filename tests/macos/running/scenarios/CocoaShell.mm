#include "tests/macos/running/appkit/Application.h"
#include "tests/macos/running/appkit/Panels.h"
#include "tests/macos/running/appkit/StatusBar.h"
#include "tests/macos/running/appkit/Windows.h"
#include "tests/macos/running/foundation/Session.h"
#include "tests/macos/running/foundation/Signals.h"
#include "tests/macos/running/scenarios/Machine.h"
#include "tests/macos/running/scenarios/Shell.h"
#include "tests/macos/running/webkit/Page.h"

namespace harbrook::running {

namespace {

class CocoaShell final : public Shell {
public:
    void installServer(int port) override { machine_.installServer(port); }
    void installPictures() override {
        for (const auto* name : {"menubarTemplate@2x.png", "menubarIdleTemplate@2x.png"})
            machine_.addFile(
                std::filesystem::path("/Applications/Harbrook.app/Contents/Resources") / name, "");
    }
    void installNodeOfLoginShell(int port) override {
        machine_.addProgram("/bin/zsh", "echo /Users/ada/bin/node\necho words of a profile >&2\n");
        machine_.installServer(port, "/Users/ada/bin/node");
    }
    void addDataOfEarlierVersion() override { machine_.addFile("/Users/ada/.ferncastle/kept", ""); }
    void setVariable(const std::string& name, const std::string& value) override {
        machine_.world.environment[name] = value;
    }

    std::vector<std::string> run(const std::function<void()>& user) override {
        std::vector<std::string> lines;
        machine_.run([&] {
            user();
            running::quit();
            lines = machine_.world.log.lines();
            menu_ = {};
        });
        return lines;
    }

    void settle() override { machine_.world.settle(); }
    void advance(double seconds) override { machine_.world.advance(seconds); }
    void waitForPage() override { machine_.waitForPage(); }

    void choose(const Titles& titles) override { chooseFromMainMenu(titles); }
    void openStatusMenu() override { menu_ = running::openStatusMenu(); }
    void chooseStatus(const Titles& titles) override { chooseFromMenu(menu_, titles); }
    bool reopen(bool hasVisibleWindows) override { return running::reopen(hasVisibleWindows); }
    void closeLastWindow() override {
        closeWindow();
        running::closeLastWindow();
    }
    void quit() override { running::quit(); }
    void receiveSignal(int number) override { running::receiveSignal(number); }
    void resize(Size size) override { resizeWindow(size); }
    void enterFullScreen() override { running::enterFullScreen(); }
    void exitFullScreen() override { running::exitFullScreen(); }
    void setCurrentEvent(std::optional<EventType> type) override { running::setCurrentEvent(type); }
    void endSheet(long response, const std::optional<std::string>& choice) override {
        running::endSheet(response, choice);
    }

    void post(const std::string& channel, const Value& body) override { postMessage(channel, body); }
    bool navigate(const Address& address) override {
        return running::navigate(address) == NavigationActionPolicy::allow;
    }
    bool openWindow(const Address& address) override { return running::openWindow(address); }
    void failProvisionally() override { running::failProvisionally("no"); }
    void failLoading() override { running::failLoading("no"); }
    void showAlert(const std::string& message, std::function<void()> answered) override {
        running::showAlert(message, std::move(answered));
    }
    void askConfirmation(const std::string& message, std::function<void(bool)> answered) override {
        running::askConfirmation(message, std::move(answered));
    }
    void setScripts(std::function<std::optional<Value>(const std::string&)> evaluate) override {
        running::setScripts(std::move(evaluate));
    }
    void notify(const std::string& name, const Value::Dictionary& userInfo) override {
        const AutoreleasePool pool;
        postFromOutside(text(name), objectOf(userInfo));
    }
    void answer(int status, const std::string& body) override {
        openExchanges().front()->answer(status, body);
    }

private:
    Machine machine_;
    Kept<NSMenu*> menu_;
};

} // namespace

std::unique_ptr<Shell> makeCocoaShell() {
    return std::make_unique<CocoaShell>();
}

} // namespace harbrook::running
