#include "tests/macos/running/scenarios/ScenarioTest.h"

namespace harbrook::running {
namespace {

constexpr auto nothingRuns = R"({"projects":[],"stats":{"running":0,"postgres":0,"redis":0,"containers":0}})";
constexpr auto twoProjects = R"({"projects":[
  {"name":"shop","path":"/Users/ada/shop","running":true,"appRunning":true,"ports":[3000,3001,3002,3003],"hasCommand":true},
  {"name":"notes","path":"/Users/ada/n & o","running":true,"ports":[8080]},
  {"name":"blog","path":"/Users/ada/blog","running":false,"hasCommand":true,"ports":[]}],
  "stats":{"running":2,"postgres":1,"redis":2,"containers":3}})";

class Status : public Scenario {
protected:
    /// The next poll brings `snapshot`.
    static void poll(Shell& shell, const std::string& snapshot) {
        shell.advance(3);
        shell.answer(200, snapshot);
        shell.settle();
    }
};

TEST_F(Status, shows_snapshots_as_they_come) {
    play([](Shell& shell) {
        for (const auto* snapshot : {nothingRuns, twoProjects, twoProjects, "no snapshot", nothingRuns})
            poll(shell, snapshot);
        shell.advance(3);
        shell.advance(10);
    });
}

TEST_F(Status, offers_projects_and_their_ports) {
    play([](Shell& shell) {
        poll(shell, twoProjects);
        shell.openStatusMenu();
        shell.chooseStatus({"Open Harbrook"});
        shell.chooseStatus({"shop   :3000 :3001 :3002", "Open localhost:3001 in browser"});
        shell.chooseStatus({"notes   :8080", "Show in Harbrook"});
        shell.settle();
    });
    EXPECT_EQ(said("http://localhost:3001").size(), 1U);
}

TEST_F(Status, stops_and_starts_projects_and_looks_again) {
    play([](Shell& shell) {
        poll(shell, twoProjects);
        shell.openStatusMenu();
        shell.answer(200, twoProjects);
        shell.chooseStatus({"shop   :3000 :3001 :3002", "Stop shop"});
        shell.answer(200, "{}");
        shell.settle();
        shell.answer(200, nothingRuns);
        shell.chooseStatus({"Start a project", "blog"});
        shell.advance(1);
        shell.advance(5);
    });
}

TEST_F(Status, quits) {
    play([](Shell& shell) {
        poll(shell, nothingRuns);
        shell.openStatusMenu();
        shell.chooseStatus({"Quit Harbrook"});
    });
}

} // namespace
} // namespace harbrook::running
