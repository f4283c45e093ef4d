#pragma once

#include "platform/Event.h"
#include "platform/Geometry.h"
#include "platform/Value.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace harbrook::running {

using Titles = std::vector<std::string>;
using Address = std::optional<std::string>;

/// The whole program on one platform, and all that users, pages and servers can do to it. A scenario is
/// written once, for the double and for Cocoa.
class Shell {
public:
    virtual ~Shell() = default;

    // Before it runs.
    virtual void installServer(int port) = 0;
    virtual void installPictures() = 0;
    /// Node.js that only the login shell knows, and the server's script.
    virtual void installNodeOfLoginShell(int port) = 0;
    virtual void addDataOfEarlierVersion() = 0;
    virtual void setVariable(const std::string& name, const std::string& value) = 0;

    /// Runs the program from its start to its end; `user` acts meanwhile. What was said to the platform until
    /// the program had ended.
    virtual std::vector<std::string> run(const std::function<void()>& user) = 0;

    // While it runs.
    virtual void settle() = 0;
    virtual void advance(double seconds) = 0;
    virtual void waitForPage() = 0;

    virtual void choose(const Titles& titles) = 0;
    virtual void openStatusMenu() = 0;
    /// From the status menu as it was opened last.
    virtual void chooseStatus(const Titles& titles) = 0;
    virtual bool reopen(bool hasVisibleWindows) = 0;
    virtual void closeLastWindow() = 0;
    virtual void quit() = 0;
    virtual void receiveSignal(int number) = 0;
    virtual void resize(Size size) = 0;
    virtual void enterFullScreen() = 0;
    virtual void exitFullScreen() = 0;
    virtual void setCurrentEvent(std::optional<EventType> type) = 0;
    virtual void endSheet(long response, const std::optional<std::string>& choice = {}) = 0;

    virtual void post(const std::string& channel, const Value& body) = 0;
    void post(const Value& body) { post("fc", body); }
    virtual bool navigate(const Address& address) = 0;
    virtual bool openWindow(const Address& address) = 0;
    virtual void failProvisionally() = 0;
    virtual void failLoading() = 0;
    virtual void showAlert(const std::string& message, std::function<void()> answered) = 0;
    virtual void askConfirmation(const std::string& message, std::function<void(bool)> answered) = 0;
    virtual void setScripts(std::function<std::optional<Value>(const std::string&)> evaluate) = 0;
    virtual void notify(const std::string& name, const Value::Dictionary& userInfo) = 0;

    /// The server answers the oldest request that waits.
    virtual void answer(int status, const std::string& body) = 0;
};

[[nodiscard]] std::unique_ptr<Shell> makeDoubleShell();
[[nodiscard]] std::unique_ptr<Shell> makeCocoaShell();

} // namespace harbrook::running
