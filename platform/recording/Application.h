#pragma once

#include "platform/Application.h"
#include "platform/Workspace.h"
#include "platform/recording/World.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace harbrook::recording {

class Event final : public harbrook::Event {
public:
    explicit Event(EventType type) : type_(type) {}
    EventType type() const override { return type_; }

private:
    EventType type_;
};

/// The application without an event loop: `run` tells the delegate that launching has finished, and then does
/// what the test has put in place of the loop.
class Application final : public harbrook::Application {
public:
    explicit Application(WorldPtr world) : world_(std::move(world)) {}

    void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void setCreatesNewApplicationInstance(bool flag) override;
    void run() override;
    void activateIgnoringOtherApps(bool flag) override;
    void setMainMenu(const Menu& menu) override;
    void orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) override;
    void terminate() override;
    std::shared_ptr<const harbrook::Event> currentEvent() override { return event_; }

    /// Notes the making, the first time.
    void make();

    // What the test looks at and sets.

    [[nodiscard]] const std::optional<Menu>& mainMenu() const { return mainMenu_; }
    [[nodiscard]] const std::optional<AboutPanelOptions>& aboutPanel() const { return aboutPanel_; }
    [[nodiscard]] bool isTerminated() const { return terminated_; }
    /// What happens while the event loop would run.
    void setLoop(std::function<void()> loop) { loop_ = std::move(loop); }
    void setCurrentEvent(std::optional<EventType> type);

    // What the user does.

    /// Chooses the item of the main menu with these titles, from the menu's own on; the first stands for the
    /// untitled application menu when it is empty.
    void simulateChoice(const std::vector<std::string>& titles);
    /// Chooses the item of `menu` with these titles, from the outermost on.
    void simulateChoice(const Menu& menu, const std::vector<std::string>& titles);
    /// Presses a key with modifier flags. Whether an item of the main menu has that equivalent.
    bool simulateKey(const std::string& key, std::uint32_t modifiers);
    /// What the delegate answered.
    bool simulateReopen(bool hasVisibleWindows);
    /// Closes the last window and asks the delegate whether that ends the application.
    bool simulateLastWindowClosed();

private:
    void noteRoles(const Menu& menu);
    void perform(const MenuItem& item);
    [[nodiscard]] std::shared_ptr<ApplicationDelegate> delegate() const;

    WorldPtr world_;
    std::weak_ptr<ApplicationDelegate> delegate_;
    std::optional<Menu> mainMenu_;
    std::optional<AboutPanelOptions> aboutPanel_;
    std::function<void()> loop_;
    std::shared_ptr<const Event> event_;
    bool made_ = false;
    bool ran_ = false;
    bool terminated_ = false;
};

class Workspace final : public harbrook::Workspace {
public:
    explicit Workspace(WorldPtr world) : world_(std::move(world)) {}

    bool openURL(const URL& url) override {
        world_->noteOnMain("workspace openURL: " + url.absoluteString());
        return hasPrograms_;
    }

    /// Whether the desktop has a program for anything.
    void setHasPrograms(bool flag) { hasPrograms_ = flag; }

private:
    WorldPtr world_;
    bool hasPrograms_ = true;
};

} // namespace harbrook::recording
