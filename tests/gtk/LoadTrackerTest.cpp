#include "platform/gtk/web/LoadTracker.h"

#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

using namespace gtk;

using Failure = LoadTracker::Failure;

const std::string root = "http://localhost:4711/";
const std::string blank = "about:blank";

/// A tracker whose engine is still being warmed up.
LoadTracker warmingUp() {
    LoadTracker loads;
    loads.warmUpBegan();
    return loads;
}

void beginOwnLoad(LoadTracker& loads) {
    loads.ownLoadRequested(root);
    loads.decided(root, false, true);
    loads.started();
}

/// A tracker that shows a page the shell asked for.
LoadTracker showingPage() {
    auto loads = warmingUp();
    beginOwnLoad(loads);
    EXPECT_FALSE(loads.committedBlankInstead(root));
    return loads;
}

TEST(LoadTracker, the_warm_up_is_nobodys_business) {
    auto loads = warmingUp();
    EXPECT_TRUE(loads.isWarmUpDecision(blank));
    loads.decided(blank, false, true);
    loads.started();
    EXPECT_FALSE(loads.committedBlankInstead(blank));
    EXPECT_FALSE(loads.hasPage());
    EXPECT_FALSE(loads.awaitsOwnLoad());
    EXPECT_FALSE(loads.reportsTermination());
}

TEST(LoadTracker, a_warm_up_that_is_overtaken_has_not_failed) {
    auto loads = warmingUp();
    loads.ownLoadRequested(root);
    EXPECT_FALSE(loads.reportsFailure(blank, Failure::cancelled));
    EXPECT_TRUE(loads.awaitsOwnLoad());
}

TEST(LoadTracker, a_blank_document_of_a_page_is_decided_by_the_shell) {
    auto loads = showingPage();
    EXPECT_FALSE(loads.isWarmUpDecision(blank));
}

TEST(LoadTracker, an_own_load_that_cannot_connect_has_failed) {
    auto loads = warmingUp();
    beginOwnLoad(loads);
    EXPECT_TRUE(loads.reportsFailure(root, Failure::other));
    EXPECT_FALSE(loads.hasPage());
}

TEST(LoadTracker, the_warm_up_may_start_between_the_request_and_its_decision) {
    auto loads = warmingUp();
    loads.ownLoadRequested(root);
    loads.started();
    EXPECT_FALSE(loads.committedBlankInstead(blank));
    loads.decided(root, false, true);
    loads.started();
    EXPECT_FALSE(loads.committedBlankInstead(root));
    EXPECT_TRUE(loads.hasPage());
}

TEST(LoadTracker, a_load_that_gives_way_to_the_shells_next_has_not_failed) {
    auto loads = showingPage();
    beginOwnLoad(loads);
    loads.ownLoadRequested(root);
    EXPECT_FALSE(loads.reportsFailure(root, Failure::cancelled));
    loads.decided(root, false, true);
    EXPECT_FALSE(loads.reportsFailure(root, Failure::cancelled));
    loads.started();
    EXPECT_TRUE(loads.reportsFailure(root, Failure::cancelled));
}

TEST(LoadTracker, a_page_that_stops_its_own_load_has_failed) {
    EXPECT_TRUE(showingPage().reportsFailure(root, Failure::cancelled));
}

TEST(LoadTracker, a_link_that_turns_out_to_be_no_page_has_failed) {
    auto loads = showingPage();
    loads.started();
    EXPECT_TRUE(loads.reportsFailure(root + "file", Failure::other));
}

TEST(LoadTracker, an_own_load_that_turns_out_to_be_no_page_has_failed) {
    auto loads = warmingUp();
    beginOwnLoad(loads);
    EXPECT_TRUE(loads.reportsFailure(root, Failure::other));
    EXPECT_TRUE(loads.isOwnUnshown(root));
}

TEST(LoadTracker, an_own_load_whose_redirect_the_shell_refuses_has_failed) {
    auto loads = warmingUp();
    beginOwnLoad(loads);
    loads.decided("http://example.com/", true, false);
    EXPECT_TRUE(loads.reportsFailure(root, Failure::other));
    EXPECT_TRUE(loads.reportsFailure(root, Failure::cancelled));
    EXPECT_FALSE(loads.awaitsOwnLoad());
}

TEST(LoadTracker, a_link_that_the_shell_refuses_does_not_touch_the_load_under_way) {
    auto loads = showingPage();
    beginOwnLoad(loads);
    loads.decided("http://example.com/", false, false);
    EXPECT_TRUE(loads.awaitsOwnLoad());
}

TEST(LoadTracker, a_blank_document_in_the_place_of_the_page_is_a_failure) {
    auto loads = warmingUp();
    beginOwnLoad(loads);
    EXPECT_TRUE(loads.committedBlankInstead(blank));
    EXPECT_FALSE(loads.hasPage());
}

TEST(LoadTracker, the_end_of_the_process_matters_once_something_was_asked_for) {
    auto loads = warmingUp();
    loads.ownLoadRequested(root);
    EXPECT_TRUE(loads.reportsTermination());
    EXPECT_TRUE(showingPage().reportsTermination());
}

} // namespace
} // namespace harbrook::tests
