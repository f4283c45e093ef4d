#include "status/StatusMenu.h"

#include <algorithm>

namespace harbrook {

namespace {

constexpr std::size_t portsInTitle = 3;
constexpr std::size_t portsInSubmenu = 5;

bool isShown(const State::Project& project) {
    return project.menubar.value_or(true);
}

bool isListed(const State::Project& project) {
    return project.running && isShown(project);
}

bool isSavedStartCommand(const State::Project& project) {
    return project.hasCommand.value_or(false) && !project.appRunning.value_or(false) && isShown(project);
}

void addInert(Menu& menu, std::string title) {
    menu.addItemWithTitle(std::move(title));
}

void addAction(
    Menu& menu, std::string title, const char* action, MenuItem::RepresentedObject object,
    const char* keyEquivalent = "") {
    auto& item = menu.addItemWithTitle(std::move(title), action, keyEquivalent);
    item.target = ActionTarget::delegate;
    item.representedObject = std::move(object);
}

std::string projectTitle(const State::Project& project) {
    std::string title = project.name + "   ";
    for (std::size_t i = 0; i < std::min(project.ports.size(), portsInTitle); ++i) {
        if (i > 0) title += ' ';
        title += ':' + std::to_string(project.ports[i]);
    }
    return title;
}

Menu projectMenu(const State::Project& project) {
    Menu menu;
    for (std::size_t i = 0; i < std::min(project.ports.size(), portsInSubmenu); ++i) {
        const auto port = project.ports[i];
        addAction(menu, "Open localhost:" + std::to_string(port) + " in browser", "openPort:", port);
    }
    addAction(menu, "Show in Harbrook", "openProject:", project.path);
    if (project.appRunning.value_or(false)) {
        menu.addSeparator();
        addAction(menu, "Stop " + project.name, "toggleProject:", "stop\n" + project.path);
    }
    return menu;
}

void addRunningProjects(Menu& menu, const State& state) {
    addInert(menu, listedProjectCount(state) > 0 ? "Running projects" : "No projects running");
    for (const auto& project : state.projects) {
        if (isListed(project)) menu.addItemWithTitle(projectTitle(project)).submenu = projectMenu(project);
    }
}

void addStartCommands(Menu& menu, const State& state) {
    Menu commands;
    for (const auto& project : state.projects) {
        if (isSavedStartCommand(project)) {
            addAction(commands, project.name, "toggleProject:", "start\n" + project.path);
        }
    }
    if (commands.items.empty()) {
        addInert(menu, "No other saved start commands");
    } else {
        menu.addItemWithTitle("Start a project").submenu = std::move(commands);
    }
}

void addCounts(Menu& menu, const State::Stats& stats) {
    addInert(
        menu, "PostgreSQL: " + std::to_string(stats.postgres) + "   Redis: " + std::to_string(stats.redis) +
                  "   Containers: " + std::to_string(stats.containers));
}

} // namespace

std::size_t listedProjectCount(const State& state) {
    return static_cast<std::size_t>(std::ranges::count_if(state.projects, isListed));
}

std::string statusTitle(const std::optional<State>& state) {
    const auto count = state ? listedProjectCount(*state) : 0;
    return count == 0 ? std::string() : " " + std::to_string(count);
}

Menu statusMenu(const std::optional<State>& state) {
    Menu menu;
    addAction(menu, "Open Harbrook", "openFromMenu", {}, "o");
    menu.addSeparator();
    if (state) {
        addRunningProjects(menu, *state);
        menu.addSeparator();
        addStartCommands(menu, *state);
        menu.addSeparator();
        addCounts(menu, state->stats);
    } else {
        addInert(menu, "Server not reachable");
    }
    menu.addSeparator();
    menu.addItemWithTitle("Quit Harbrook", "terminate:", "q");
    return menu;
}

} // namespace harbrook
