#include "platform/recording/Application.h"

#include "platform/recording/Format.h"

#include <algorithm>
#include <array>

namespace harbrook::recording {

namespace {

const MenuItem& itemAt(const Menu& menu, const std::vector<std::string>& titles, std::size_t from) {
    const auto found = std::ranges::find_if(
        menu.items, [&](const MenuItem& item) { return !item.isSeparator && item.title == titles[from]; });
    refuseIf(found == menu.items.end(), "there is no menu item " + inQuotes(titles[from]));
    refuseIf(!found->isEnabled(), "the menu item " + inQuotes(titles[from]) + " is disabled");
    if (from + 1 == titles.size()) return *found;
    refuseIf(!found->submenu, "the menu item " + inQuotes(titles[from]) + " has no submenu");
    return itemAt(*found->submenu, titles, from + 1);
}

const MenuItem* itemWithKey(const Menu& menu, const std::string& key, std::uint32_t modifiers) {
    for (const auto& item : menu.items) {
        if (item.submenu) {
            if (const auto* found = itemWithKey(*item.submenu, key, modifiers)) return found;
        }
        if (item.keyEquivalent.empty()) continue;
        auto ownKey = item.keyEquivalent;
        auto ownModifiers = item.keyEquivalentModifierMask;
        if (ownKey[0] >= 'A' && ownKey[0] <= 'Z') {
            ownKey[0] = static_cast<char>(ownKey[0] - 'A' + 'a');
            ownModifiers |= NSEventModifierFlagShift;
        }
        if (ownKey == key && ownModifiers == modifiers) return &item;
    }
    return nullptr;
}

} // namespace

void Application::make() {
    if (!std::exchange(made_, true)) world_->noteOnMain("application init");
}

void Application::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
    world_->noteOnMain("application setDelegate");
    delegate_ = std::move(delegate);
}

void Application::setActivationPolicy(ActivationPolicy policy) {
    world_->noteOnMain("application setActivationPolicy: " + std::to_string(static_cast<int>(policy)));
}

void Application::setCreatesNewApplicationInstance(bool flag) {
    refuseIf(ran_, "the application is running already");
    world_->noteOnMain("application setCreatesNewApplicationInstance: " + format(flag));
}

void Application::run() {
    world_->noteOnMain("application run");
    refuseIf(std::exchange(ran_, true), "the application runs only once");
    if (const auto own = delegate()) own->applicationDidFinishLaunching();
    if (loop_) loop_();
}

void Application::activateIgnoringOtherApps(bool flag) {
    world_->noteOnMain("application activateIgnoringOtherApps: " + format(flag));
}

void Application::noteRoles(const Menu& menu) {
    for (const auto& item : menu.items) {
        if (!item.submenu) continue;
        noteRoles(*item.submenu);
        const auto title = inQuotes(item.submenu->title);
        if (item.submenu->role == MenuRole::windowsMenu)
            world_->noteOnMain("application setWindowsMenu: " + title);
        if (item.submenu->role == MenuRole::helpMenu) world_->noteOnMain("application setHelpMenu: " + title);
    }
}

void Application::setMainMenu(const Menu& menu) {
    // A menu takes its role when it is attached, and the bar is installed last.
    noteRoles(menu);
    world_->noteOnMain("application setMainMenu: " + std::to_string(menu.items.size()) + " menus");
    mainMenu_ = menu;
}

void Application::orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) {
    world_->noteOnMain("application orderFrontStandardAboutPanel");
    aboutPanel_ = options;
}

void Application::terminate() {
    world_->noteOnMain("application terminate");
    if (std::exchange(terminated_, true)) return;
    if (const auto own = delegate()) own->applicationWillTerminate();
}

void Application::setCurrentEvent(std::optional<EventType> type) {
    event_ = type ? std::make_shared<const Event>(*type) : nullptr;
}

void Application::simulateChoice(const std::vector<std::string>& titles) {
    refuseIf(!mainMenu_, "there is no main menu");
    const auto bar = *mainMenu_;
    const auto found = std::ranges::find_if(bar.items, [&](const MenuItem& item) {
        return item.submenu && item.submenu->title == titles.front();
    });
    refuseIf(found == bar.items.end(), "there is no menu " + inQuotes(titles.front()));
    simulateChoice(*found->submenu, {titles.begin() + 1, titles.end()});
}

void Application::simulateChoice(const Menu& menu, const std::vector<std::string>& titles) {
    const auto item = itemAt(menu, titles, 0);
    perform(item);
}

bool Application::simulateKey(const std::string& key, std::uint32_t modifiers) {
    const auto bar = mainMenu_.value_or(Menu{});
    const auto* item = itemWithKey(bar, key, modifiers);
    if (item) perform(*item);
    return item != nullptr;
}

bool Application::simulateReopen(bool hasVisibleWindows) {
    const auto own = delegate();
    refuseIf(!own, "the application has no delegate");
    return own->applicationShouldHandleReopen(hasVisibleWindows);
}

bool Application::simulateLastWindowClosed() {
    const auto own = delegate();
    refuseIf(!own, "the application has no delegate");
    const bool terminates = own->applicationShouldTerminateAfterLastWindowClosed();
    if (terminates) terminate();
    return terminates;
}

void Application::perform(const MenuItem& item) {
    constexpr std::array standardActions = {
        "undo:",        "redo:", "cut:", "copy:", "paste:", "selectAll:", "hide:", "performMiniaturize:",
        "performClose:"};
    const bool isStandard = std::ranges::find(standardActions, item.action) != standardActions.end();
    if (item.target == ActionTarget::responderChain && item.action == "terminate:") {
        terminate();
    } else if (item.target == ActionTarget::responderChain && isStandard) {
        world_->noteOnMain("responderChain " + item.action);
    } else {
        const auto own = delegate();
        refuseIf(
            !own || !own->respondsToSelector(item.action), "nobody responds to " + inQuotes(item.action));
        own->performSelector(item.action, item);
    }
}

std::shared_ptr<ApplicationDelegate> Application::delegate() const {
    return delegate_.lock();
}

} // namespace harbrook::recording
