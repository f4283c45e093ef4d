#include "tests/macos/running/scenarios/ScenarioTest.h"

namespace harbrook::running {
namespace {

class MainMenu : public Scenario, public testing::WithParamInterface<Titles> {};

TEST_P(MainMenu, command) {
    play([](Shell& shell) {
        shell.choose(GetParam());
        shell.settle();
    });
}

INSTANTIATE_TEST_SUITE_P(
    Each, MainMenu,
    testing::Values(
        Titles{"", "About Harbrook"}, Titles{"", "Check for Updates…"}, Titles{"", "Settings…"},
        Titles{"", "Support Harbrook…"}, Titles{"", "Hide Harbrook"}, Titles{"", "Quit Harbrook"},
        Titles{"Edit", "Undo"}, Titles{"Edit", "Redo"}, Titles{"Edit", "Cut"}, Titles{"Edit", "Copy"},
        Titles{"Edit", "Paste"}, Titles{"Edit", "Select All"}, Titles{"View", "Show or Hide Sidebar"},
        Titles{"View", "Reload"}, Titles{"View", "Dashboard"}, Titles{"View", "Services"},
        Titles{"View", "Docker"}, Titles{"View", "Ports"}, Titles{"Window", "Minimize"},
        Titles{"Window", "Close"}, Titles{"Help", "About & Support"}, Titles{"Help", "Harbrook Website"},
        Titles{"Help", "Email Support"}, Titles{"Help", "Show Server Log"}));

} // namespace
} // namespace harbrook::running
