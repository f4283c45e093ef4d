#include "platform/gtk/web/EngineLeftovers.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <set>

namespace harbrook::tests {

namespace {

using namespace gtk;

namespace fs = std::filesystem;

class EngineLeftovers : public testing::Test {
protected:
    EngineLeftovers() {
        std::string pattern = testing::TempDir() + "/leftovers-XXXXXX";
        runtime_ = mkdtemp(pattern.data());
    }
    ~EngineLeftovers() override { fs::remove_all(runtime_); }

    void make(const std::string& name) const {
        fs::create_directories(instances() / name);
        std::ofstream(instances() / name / "bwrapinfo.json") << "{}";
    }
    void noteStart(const std::string& process) const {
        fs::create_directories(runtime_ / "harbrook");
        std::ofstream(runtime_ / "harbrook" / process);
    }
    [[nodiscard]] fs::path instances() const { return runtime_ / ".flatpak"; }
    [[nodiscard]] std::set<std::string> names() const {
        std::set<std::string> all;
        for (const auto& entry : fs::directory_iterator(instances()))
            all.insert(entry.path().filename());
        return all;
    }
    /// The number of a process that has been.
    [[nodiscard]] static std::string goneProcess() {
        const pid_t child = fork();
        if (child == 0) _exit(0);
        waitpid(child, nullptr, 0);
        return std::to_string(child);
    }

    fs::path runtime_;
};

TEST_F(EngineLeftovers, of_earlier_starts_that_are_gone_are_removed) {
    const auto gone = goneProcess();
    noteStart(gone);
    make("webkit-" + gone + "-4");
    make("webkit-" + gone + "-12");
    removeEngineLeftovers(runtime_);
    EXPECT_THAT(names(), testing::IsEmpty());
    EXPECT_FALSE(fs::exists(runtime_ / "harbrook" / gone));
}

TEST_F(EngineLeftovers, of_other_programs_that_are_gone_stay) {
    const auto theirs = "webkit-" + goneProcess() + "-4";
    make(theirs);
    removeEngineLeftovers(runtime_);
    EXPECT_THAT(names(), testing::ElementsAre(theirs));
}

TEST_F(EngineLeftovers, of_this_start_are_for_a_later_one_to_remove) {
    removeEngineLeftovers(runtime_);
    EXPECT_TRUE(fs::exists(runtime_ / "harbrook" / std::to_string(getpid())));
}

TEST_F(EngineLeftovers, of_processes_that_run_stay) {
    const auto own = "webkit-" + std::to_string(getpid()) + "-4";
    make(own);
    make("webkit-1-4");
    noteStart("1");
    removeEngineLeftovers(runtime_);
    EXPECT_THAT(names(), testing::UnorderedElementsAre(own, "webkit-1-4"));
}

TEST_F(EngineLeftovers, what_others_have_put_there_stays) {
    const auto gone = goneProcess();
    const std::set<std::string> others{
        gone, "webkit-" + gone, "webkit-x-4", "webkit--4", "webkit-99999999999999999999-4", "1234567"};
    for (const auto& name : others)
        make(name);
    for (const auto* start : {"x", "", "99999999999999999999"})
        noteStart(start);
    noteStart(gone);
    removeEngineLeftovers(runtime_);
    EXPECT_EQ(names(), others);
}

TEST_F(EngineLeftovers, may_be_none_at_all) {
    removeEngineLeftovers(runtime_);
    EXPECT_FALSE(fs::exists(instances()));
}

} // namespace

} // namespace harbrook::tests
