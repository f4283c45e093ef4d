#include "app/AppDelegate.h"

#include <array>

namespace harbrook {

namespace {

using Command = void (AppDelegate::*)();
using SenderCommand = void (AppDelegate::*)(const MenuItem&);

/// A menu action: its name, and the method of that name. A name that ends in a colon takes the sending item.
struct Action {
    std::string_view selector;
    Command command = nullptr;
    SenderCommand senderCommand = nullptr;
};

constexpr std::array actions = {
    Action{"showAbout", &AppDelegate::showAbout},
    Action{"checkUpdates", &AppDelegate::checkUpdates},
    Action{"goSettings", &AppDelegate::goSettings},
    Action{"goAbout", &AppDelegate::goAbout},
    Action{"toggleSidebar", &AppDelegate::toggleSidebar},
    Action{"reload", &AppDelegate::reload},
    Action{"goHome", &AppDelegate::goHome},
    Action{"goServices", &AppDelegate::goServices},
    Action{"goDocker", &AppDelegate::goDocker},
    Action{"goPorts", &AppDelegate::goPorts},
    Action{"openWebsite", &AppDelegate::openWebsite},
    Action{"emailDeveloper", &AppDelegate::emailDeveloper},
    Action{"openLog", &AppDelegate::openLog},
    Action{"openFromMenu", &AppDelegate::openFromMenu},
    Action{"openPort:", nullptr, &AppDelegate::openPort},
    Action{"openProject:", nullptr, &AppDelegate::openProject},
    Action{"toggleProject:", nullptr, &AppDelegate::toggleProject},
};

const Action* actionNamed(std::string_view selector) {
    for (const auto& action : actions) {
        if (action.selector == selector) return &action;
    }
    return nullptr;
}

} // namespace

bool AppDelegate::respondsToSelector(std::string_view selector) const {
    return actionNamed(selector) != nullptr;
}

void AppDelegate::performSelector(std::string_view selector, const MenuItem& sender) {
    assertMainThread();
    const auto* action = actionNamed(selector);
    if (!action) return;
    if (action->command) {
        (this->*action->command)();
    } else {
        (this->*action->senderCommand)(sender);
    }
}

} // namespace harbrook
