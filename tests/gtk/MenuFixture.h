#pragma once

#include "platform/gtk/status/MenuLayout.h"
#include "status/StatusMenu.h"

#include <string>
#include <vector>

namespace harbrook::tests {

inline State::Project runningProject(const std::string& name, std::vector<std::int64_t> ports = {}) {
    State::Project project;
    project.name = name;
    project.path = "/projects/" + name;
    project.running = true;
    project.ports = std::move(ports);
    return project;
}

inline State::Project savedProject(const std::string& name) {
    auto project = runningProject(name);
    project.running = false;
    project.hasCommand = true;
    return project;
}

inline Menu menuOf(std::vector<State::Project> projects, State::Stats stats = {}) {
    return statusMenu(State{std::move(projects), stats});
}

inline Menu unreachable() {
    return statusMenu(std::nullopt);
}

/// The id of the first row with this title, or 0.
inline std::int32_t idOf(const gtk::MenuLayout& layout, const std::string& title) {
    for (const auto& row : layout.rows()) {
        if (row.item && row.item->title == title) return row.id;
    }
    return 0;
}

/// Many running projects with two ports each that can be stopped.
inline std::vector<State::Project> manyProjects(int count) {
    std::vector<State::Project> projects;
    for (int i = 0; i < count; ++i) {
        auto project = runningProject("project-" + std::to_string(i), {3000 + i, 13000 + i});
        project.appRunning = true;
        projects.push_back(std::move(project));
    }
    return projects;
}

} // namespace harbrook::tests
