#include "platform/gtk/foundation/Bundle.h"
#include "platform/gtk/foundation/FileHandle.h"
#include "platform/gtk/foundation/FileManager.h"
#include "tests/gtk/support/RealPlatform.h"
#include "tests/support/TemporaryFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

namespace harbrook::tests {

namespace {

namespace fs = std::filesystem;

/// What only a real file system can show.
class RealFiles : public testing::Test {
protected:
    [[nodiscard]] const fs::path& directory() const { return directory_.path(); }
    [[nodiscard]] static unsigned modeOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
    [[nodiscard]] std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory()), {}));
    }

    gtk::FileManager files_;

private:
    TemporaryDirectory directory_;
};

TEST_F(RealFiles, what_is_made_is_for_the_user_alone) {
    ASSERT_FALSE(files_.createDirectoryAtURL(directory() / "a" / "b").has_value());
    EXPECT_EQ(modeOf(directory() / "a"), 0700U);
    EXPECT_EQ(modeOf(directory() / "a" / "b"), 0700U);
    ASSERT_TRUE(files_.createFileAtPath(directory() / "log"));
    EXPECT_EQ(modeOf(directory() / "log"), 0600U);
    ASSERT_TRUE(files_.writeAtomically("x", directory() / "text"));
    EXPECT_EQ(modeOf(directory() / "text"), 0600U);
}

TEST_F(RealFiles, a_link_is_replaced_and_its_target_left_alone) {
    std::ofstream(directory() / "precious") << "content";
    fs::create_symlink(directory() / "precious", directory() / "log");
    ASSERT_TRUE(files_.createFileAtPath(directory() / "log"));
    EXPECT_FALSE(fs::is_symlink(directory() / "log"));
    EXPECT_EQ(readFile(directory() / "precious"), "content");
    EXPECT_EQ(readFile(directory() / "log"), "");
}

TEST_F(RealFiles, an_earlier_shell_goes_on_writing_into_its_own_log) {
    const auto path = directory() / "log";
    ASSERT_TRUE(files_.createFileAtPath(path));
    const auto earlier = gtkPlatform().fileHandleForWritingToURL(path);
    ASSERT_TRUE(files_.createFileAtPath(path));
    const auto later = gtkPlatform().fileHandleForWritingToURL(path);
    earlier->writeData("from the earlier one");
    later->writeData("mine");
    EXPECT_EQ(readFile(path), "mine");
}

TEST_F(RealFiles, a_write_that_fails_leaves_nothing_behind) {
    fs::create_directory(directory() / "taken");
    EXPECT_FALSE(files_.writeAtomically("text", directory() / "taken"));
    EXPECT_FALSE(files_.createFileAtPath(directory() / "taken"));
    EXPECT_EQ(entries(), 1U);
}

TEST_F(RealFiles, a_fifo_is_opened_for_writing_only_when_somebody_reads_it) {
    const auto fifo = directory() / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(gtk::openForWriting(fifo), nullptr);

    const gtk::FileDescriptor reader(open(fifo.c_str(), O_RDONLY | O_NONBLOCK));
    const auto writer = gtk::openForWriting(fifo);
    ASSERT_NE(writer, nullptr);
    // Writing waits for the reader when there is no more room.
    EXPECT_EQ(fcntl(writer->descriptor(), F_GETFL) & O_NONBLOCK, 0);
}

TEST_F(RealFiles, a_dangling_link_is_in_the_way_of_a_move) {
    fs::create_directory(directory() / "source");
    fs::create_symlink(directory() / "nowhere", directory() / "destination");
    EXPECT_TRUE(files_.moveItemAtURL(directory() / "source", directory() / "destination").has_value());
    EXPECT_TRUE(fs::is_directory(directory() / "source"));
    EXPECT_TRUE(fs::is_symlink(directory() / "destination"));
}

TEST_F(RealFiles, paths_may_end_in_a_slash_or_hold_any_character) {
    EXPECT_FALSE(files_.createDirectoryAtURL(directory() / "with slash" / "").has_value());
    const auto odd = directory() / "n\xC3\xA4me \xFF %s";
    EXPECT_TRUE(files_.writeAtomically("text", odd));
    EXPECT_EQ(readFile(odd), "text");
}

TEST_F(RealFiles, a_resource_is_a_file_of_the_bundle) {
    fs::create_directories(directory() / "app");
    std::ofstream(directory() / "app" / "server.js") << "//";
    std::ofstream(directory() / "node") << "";
    gtk::Bundle bundle(directory());
    EXPECT_EQ(bundle.URLForResource("server", "js", "app"), directory() / "app" / "server.js");
    EXPECT_EQ(bundle.URLForResource("node", "", ""), directory() / "node");
    EXPECT_EQ(bundle.URLForResource("server", "js", ""), std::nullopt);
    EXPECT_EQ(bundle.URLForResource("node", "exe", ""), std::nullopt);
}

TEST_F(RealFiles, resources_are_found_from_the_program_wherever_its_tree_stands) {
    const auto program = directory() / "prefix" / "bin" / "harbrook";
    EXPECT_EQ(gtk::resourceDirectory(program), directory() / "prefix" / "bin" / "resources");
    fs::create_directories(directory() / "prefix" / "share" / "harbrook");
    EXPECT_EQ(gtk::resourceDirectory(program), directory() / "prefix" / "share" / "harbrook");
}

} // namespace

} // namespace harbrook::tests
