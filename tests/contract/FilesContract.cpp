#include "tests/contract/Desktop.h"

namespace harbrook::contract {

namespace {

class Files : public Contract {
protected:
    [[nodiscard]] FileManager& files() { return platform().fileManager(); }
};

TEST_P(Files, the_working_directory_and_the_home_directory_are_whole_paths) {
    EXPECT_TRUE(files().currentDirectoryPath().is_absolute());
    EXPECT_TRUE(files().homeDirectoryForCurrentUser().is_absolute());
}

TEST_P(Files, a_directory_is_made_with_those_above_it_and_may_exist) {
    const auto path = desktop().directory() / "one" / "two" / "three";
    EXPECT_FALSE(files().fileExistsAtPath(path));
    EXPECT_FALSE(files().createDirectoryAtURL(path).has_value());
    EXPECT_TRUE(files().fileExistsAtPath(path));
    EXPECT_FALSE(files().createDirectoryAtURL(path).has_value());
}

TEST_P(Files, a_directory_cannot_be_made_below_a_file) {
    const auto file = desktop().directory() / "file";
    ASSERT_TRUE(files().createFileAtPath(file));
    const auto error = files().createDirectoryAtURL(file / "below");
    ASSERT_TRUE(error.has_value());
    EXPECT_NE(error->localizedDescription, "");
    EXPECT_TRUE(files().createDirectoryAtURL(file).has_value());
}

TEST_P(Files, a_file_that_exists_is_replaced_by_an_empty_one) {
    const auto path = desktop().directory() / "file";
    ASSERT_TRUE(files().writeAtomically("old", path));
    EXPECT_TRUE(files().createFileAtPath(path));
    EXPECT_EQ(desktop().contents(path), "");
}

TEST_P(Files, a_file_in_no_directory_is_not_made) {
    const auto path = desktop().directory() / "nowhere" / "file";
    EXPECT_FALSE(files().createFileAtPath(path));
    EXPECT_FALSE(files().writeAtomically("text", path));
    EXPECT_EQ(platform().fileHandleForWritingToURL(path), nullptr);
}

TEST_P(Files, a_directory_is_not_replaced_by_a_file) {
    const auto path = desktop().directory() / "directory";
    ASSERT_FALSE(files().createDirectoryAtURL(path).has_value());
    EXPECT_FALSE(files().createFileAtPath(path));
    EXPECT_FALSE(files().writeAtomically("text", path));
    EXPECT_TRUE(files().fileExistsAtPath(path));
    EXPECT_EQ(platform().fileHandleForWritingToURL(path), nullptr);
}

TEST_P(Files, text_is_written_whole_and_replaces_what_was_there) {
    const auto path = desktop().directory() / "file";
    EXPECT_TRUE(files().writeAtomically("a longer text", path));
    EXPECT_TRUE(files().writeAtomically("short", path));
    EXPECT_EQ(desktop().contents(path), "short");
}

TEST_P(Files, a_handle_writes_from_the_start_or_from_the_end) {
    const auto path = desktop().directory() / "file";
    ASSERT_TRUE(files().writeAtomically("abcdef", path));
    const auto atStart = platform().fileHandleForWritingToURL(path);
    ASSERT_NE(atStart, nullptr);
    atStart->writeData("AB");
    const auto atEnd = platform().fileHandleForWritingToURL(path);
    ASSERT_NE(atEnd, nullptr);
    atEnd->seekToEndOfFile();
    atEnd->writeData("g");
    atEnd->writeData("h");
    EXPECT_EQ(desktop().contents(path), "ABcdefgh");
}

TEST_P(Files, a_move_takes_everything_along_and_replaces_nothing) {
    const auto source = desktop().directory() / "source";
    const auto destination = desktop().directory() / "destination";
    ASSERT_FALSE(files().createDirectoryAtURL(source / "inner").has_value());
    ASSERT_TRUE(files().writeAtomically("text", source / "inner" / "file"));
    EXPECT_FALSE(files().moveItemAtURL(source, destination).has_value());
    EXPECT_FALSE(files().fileExistsAtPath(source));
    EXPECT_EQ(desktop().contents(destination / "inner" / "file"), "text");

    ASSERT_FALSE(files().createDirectoryAtURL(source).has_value());
    EXPECT_TRUE(files().moveItemAtURL(source, destination).has_value());
    EXPECT_TRUE(files().fileExistsAtPath(source));
    EXPECT_EQ(desktop().contents(destination / "inner" / "file"), "text");
}

TEST_P(Files, a_move_of_nothing_is_an_error) {
    EXPECT_TRUE(
        files().moveItemAtURL(desktop().directory() / "none", desktop().directory() / "some").has_value());
}

TEST_P(Files, only_a_file_with_the_permission_is_executable) {
    const auto plain = desktop().directory() / "plain";
    ASSERT_TRUE(files().createFileAtPath(plain));
    EXPECT_TRUE(files().isExecutableFileAtPath(desktop().makeProgram({})));
    EXPECT_FALSE(files().isExecutableFileAtPath(plain));
    EXPECT_FALSE(files().isExecutableFileAtPath(desktop().directory()));
    EXPECT_FALSE(files().isExecutableFileAtPath(desktop().directory() / "none"));
}

TEST_P(Files, the_home_directory_is_absolute) {
    EXPECT_TRUE(files().homeDirectoryForCurrentUser().is_absolute());
}

TEST_P(Files, a_resource_that_is_missing_has_no_address) {
    EXPECT_FALSE(platform().mainBundle().URLForResource("no such", "thing", "anywhere").has_value());
    EXPECT_FALSE(platform().mainBundle().URLForResource("no such thing", "").has_value());
}

INSTANTIATE_TEST_SUITE_P(On, Files, testing::Values(implementation()), nameOf);

} // namespace

} // namespace harbrook::contract
