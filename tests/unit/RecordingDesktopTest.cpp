#include "platform/recording/Platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

using recording::Refused;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordingDesktop : public testing::Test {
protected:
    ~RecordingDesktop() override { platform.shutDown(); }

    recording::Platform platform;

    std::shared_ptr<Task> task(const std::string& executable) {
        auto made = platform.makeTask();
        made->setExecutableURL(executable);
        return made;
    }
};

TEST_F(RecordingDesktop, a_window_is_refused_off_the_main_thread) {
    const auto window = platform.makeWindow({{0, 0}, {800, 600}}, 15, BackingStore::buffered, false);
    platform.globalQueue().async([&] { window->setTitle("from a worker"); });
    EXPECT_THROW(platform.settle(), Refused);
}

TEST_F(RecordingDesktop, the_log_tells_operations_in_order_with_their_arguments) {
    const auto window = platform.makeWindow({{0, 0}, {800, 600}}, 15, BackingStore::buffered, false);
    window->setTitle("a \"b\"\n");
    window->center();
    EXPECT_THAT(
        platform.log().take(), ElementsAre(
                                   "window init: (0, 0) 800 x 600 style 15 backing 2 defer false",
                                   R"(window setTitle: "a \"b\"\n")", "window center"));
    EXPECT_THAT(platform.log().lines(), IsEmpty());
}

TEST_F(RecordingDesktop, a_view_has_one_superview) {
    const auto first = platform.makeWebView({}, {});
    const auto second = platform.makeWebView({}, {});
    const auto label = platform.labelWithString("text");
    first->addSubview(label);
    EXPECT_EQ(label->superview(), first);
    EXPECT_THROW(second->addSubview(label), Refused);
}

TEST_F(RecordingDesktop, a_changed_frame_tells_its_observers_inside_the_change) {
    const auto view = platform.labelWithString("text");
    std::vector<std::string> order;
    const auto token = platform.notificationCenter().addObserverForName(
        NotificationName::NSViewFrameDidChangeNotification, std::shared_ptr<View>(view), ObserverQueue::none,
        [&] { order.emplace_back("told"); });
    view->setFrame({{0, 0}, {10, 10}});
    EXPECT_THAT(order, IsEmpty()) << "nobody asked for notifications yet";
    view->setPostsFrameChangedNotifications(true);
    view->setFrame({{0, 0}, {20, 10}});
    order.emplace_back("returned");
    view->setFrame({{0, 0}, {20, 10}});
    EXPECT_THAT(order, ElementsAre("told", "returned"));
}

TEST_F(RecordingDesktop, a_window_that_is_released_when_closed_is_gone) {
    const auto window = platform.makeWindow({{0, 0}, {800, 600}}, 15, BackingStore::buffered, false);
    platform.window()->simulateClose();
    EXPECT_THROW(window->makeKeyAndOrderFront(), Refused);
}

TEST_F(RecordingDesktop, a_child_is_launched_once) {
    platform.processes().programs["/bin/true"] = {};
    const auto child = task("/bin/true");
    EXPECT_EQ(child->launchAndReturnError(), std::nullopt);
    EXPECT_THROW((void)child->launchAndReturnError(), Refused);
    EXPECT_THROW(child->setArguments({"late"}), Refused);
}

TEST_F(RecordingDesktop, a_program_that_does_not_exist_cannot_be_launched) {
    EXPECT_EQ(task("/bin/none")->launchAndReturnError(), Error{"The file doesn’t exist."});
}

TEST_F(RecordingDesktop, a_worker_reads_what_a_child_prints_until_it_exits) {
    platform.processes().programs["/bin/echo"] = {.output = {{1, "one"}, {2, "two"}}, .exitsAfter = 3};
    const auto child = task("/bin/echo");
    const auto pipe = platform.makePipe();
    child->setStandardOutput(pipe);
    ASSERT_EQ(child->launchAndReturnError(), std::nullopt);
    std::string text;
    platform.globalQueue().async([&] { text = pipe->fileHandleForReading()->readDataToEndOfFile(); });
    platform.advance(2.5);
    EXPECT_EQ(text, "");
    platform.advance(0.5);
    EXPECT_EQ(text, "onetwo");
}

TEST_F(RecordingDesktop, a_readability_handler_hears_each_piece_and_then_the_end) {
    platform.processes().programs["/bin/echo"] = {.output = {{1, "one"}, {1, "two"}}, .exitsAfter = 3};
    const auto child = task("/bin/echo");
    const auto pipe = platform.makePipe();
    child->setStandardOutput(pipe);
    std::vector<std::string> pieces;
    pipe->fileHandleForReading()->setReadabilityHandler(
        [&](FileHandle& handle) { pieces.push_back(handle.availableData()); });
    ASSERT_EQ(child->launchAndReturnError(), std::nullopt);
    platform.advance(5);
    EXPECT_THAT(pieces, ElementsAre("one", "two", "", ""));
}

TEST_F(RecordingDesktop, a_child_with_a_full_pipe_that_nobody_reads_does_not_exit) {
    platform.processes().programs["/bin/yes"] = {.output = {{0, std::string(70'000, 'y')}}, .exitsAfter = 1};
    const auto child = task("/bin/yes");
    const auto pipe = platform.makePipe();
    child->setStandardOutput(pipe);
    ASSERT_EQ(child->launchAndReturnError(), std::nullopt);
    platform.advance(60);
    EXPECT_TRUE(platform.processes().children.front()->isRunning());
    platform.globalQueue().async([&] { (void)pipe->fileHandleForReading()->availableData(); });
    platform.settle();
    EXPECT_FALSE(platform.processes().children.front()->isRunning());
}

TEST_F(RecordingDesktop, a_main_thread_that_would_wait_forever_is_told_so) {
    platform.processes().programs["/bin/stubborn"] = {.ignoresTerminate = true};
    const auto child = task("/bin/stubborn");
    ASSERT_EQ(child->launchAndReturnError(), std::nullopt);
    child->terminate();
    EXPECT_THROW(child->waitUntilExit(), recording::WaitsForever);
}

TEST_F(RecordingDesktop, waiting_for_a_child_on_the_main_thread_runs_no_block_of_it) {
    platform.processes().programs["/bin/slow"] = {.terminationTakes = 4};
    const auto child = task("/bin/slow");
    ASSERT_EQ(child->launchAndReturnError(), std::nullopt);
    bool ran = false;
    platform.mainQueue().asyncAfter(1, [&] { ran = true; });
    child->terminate();
    child->waitUntilExit();
    EXPECT_EQ(platform.now(), 4);
    EXPECT_FALSE(ran);
    platform.settle();
    EXPECT_TRUE(ran);
}

TEST_F(RecordingDesktop, files_are_made_only_in_directories_that_exist_and_can_be_written) {
    auto& files = platform.files();
    EXPECT_FALSE(files.createFileAtPath("/home/ada/none/file"));
    EXPECT_EQ(files.createDirectoryAtURL("/home/ada/a/b"), std::nullopt);
    EXPECT_TRUE(files.createFileAtPath("/home/ada/a/b/file"));
    EXPECT_NE(files.createDirectoryAtURL("/home/ada/a/b/file"), std::nullopt);
    files.makeUnwritable("/home/ada/a");
    EXPECT_FALSE(files.createFileAtPath("/home/ada/a/b/other"));
    EXPECT_FALSE(files.writeAtomically("x", "/home/ada/a/b/file"));
    EXPECT_EQ(platform.fileHandleForWritingToURL("/home/ada/a/b/file"), nullptr);
}

TEST_F(RecordingDesktop, a_moved_directory_takes_along_what_it_holds) {
    auto& files = platform.files();
    files.addFile("/home/ada/old/logs/x", "content");
    EXPECT_EQ(files.moveItemAtURL("/home/ada/old", "/home/ada/new"), std::nullopt);
    EXPECT_EQ(files.contents("/home/ada/new/logs/x"), "content");
    EXPECT_FALSE(files.has("/home/ada/old"));
    EXPECT_FALSE(files.has("/home/ada/old/logs/x"));
    EXPECT_NE(files.moveItemAtURL("/home/ada/old", "/home/ada/other"), std::nullopt);
}

TEST_F(RecordingDesktop, a_handle_writes_from_the_start_unless_it_is_moved_to_the_end) {
    auto& files = platform.files();
    files.addFile("/home/ada/log", "12345");
    platform.fileHandleForWritingToURL("/home/ada/log")->writeData("ab");
    EXPECT_EQ(files.contents("/home/ada/log"), "ab345");
    const auto handle = platform.fileHandleForWritingToURL("/home/ada/log");
    handle->seekToEndOfFile();
    handle->writeData("6");
    handle->writeData("7");
    EXPECT_EQ(files.contents("/home/ada/log"), "ab34567");
}

TEST_F(RecordingDesktop, an_exchange_ends_with_its_time_out_on_a_worker) {
    URLRequest request(*URL::URLWithString("http://localhost:3000/"));
    request.timeoutInterval = 1.5;
    std::vector<std::string> errors;
    bool onMain = true;
    platform.sharedSession()
        .dataTaskWithRequest(
            request,
            [&](const auto& body, const auto& response, const auto& error) {
                onMain = platform.isMainThread();
                errors.push_back(error->localizedDescription);
                EXPECT_FALSE(body);
                EXPECT_FALSE(response);
            })
        ->resume();
    platform.advance(1.4);
    EXPECT_THAT(errors, IsEmpty());
    platform.advance(0.1);
    EXPECT_THAT(errors, ElementsAre("The request timed out."));
    EXPECT_FALSE(onMain);
    platform.session().exchanges().front()->answer(200);
    platform.settle();
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(RecordingDesktop, a_menu_item_that_is_disabled_cannot_be_chosen) {
    Menu menu;
    menu.addItemWithTitle("Inert");
    EXPECT_THROW(platform.sharedApplication().simulateChoice(menu, {"Inert"}), Refused);
    EXPECT_THROW(platform.sharedApplication().simulateChoice(menu, {"Missing"}), Refused);
}

TEST_F(RecordingDesktop, a_sheet_ends_once_and_needs_a_window) {
    const auto window = platform.makeWindow({{0, 0}, {800, 600}}, 15, BackingStore::buffered, false);
    auto alert = platform.makeAlert();
    EXPECT_THROW(alert->beginSheetModalForWindow(nullptr, [](ModalResponse) {}), Refused);
    int answers = 0;
    alert->beginSheetModalForWindow(window, [&](ModalResponse) { ++answers; });
    alert.reset();
    platform.sheets().simulateEnd(NSAlertFirstButtonReturn);
    EXPECT_EQ(answers, 1);
    EXPECT_THROW(platform.sheets().simulateEnd(NSAlertFirstButtonReturn), Refused);
}

TEST_F(RecordingDesktop, an_open_menu_stays_as_it_was_while_the_next_one_is_installed) {
    const auto item = platform.systemStatusBar().statusItemWithLength(NSVariableStatusItemLength);
    Menu first;
    first.addItemWithTitle("first");
    Menu second;
    second.addItemWithTitle("second");
    item->setMenu(first, {});
    const auto& onScreen = platform.systemStatusBar().item()->simulateOpen();
    item->setMenu(second, {});
    EXPECT_EQ(onScreen, first);
    EXPECT_EQ(platform.systemStatusBar().item()->simulateOpen(), second);
}

} // namespace
} // namespace harbrook::tests
