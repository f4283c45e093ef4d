#include "platform/gtk/app/CommandLine.h"

#include "platform/gtk/foundation/ProcessSetup.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

namespace harbrook::tests {

namespace {

/// Answers a command line with what would go to standard output going where the test can see it.
gtk::Start answer(std::vector<std::string> words) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return gtk::answerCommandLine(static_cast<int>(words.size()), pointers.data());
}

TEST(CommandLine, asks_for_a_word_and_gets_it) {
    EXPECT_EXIT(answer({"harbrook", "--version"}), testing::ExitedWithCode(0), "^Harbrook [0-9]+\\.[0-9]+");
    EXPECT_EXIT(answer({"harbrook", "--help"}), testing::ExitedWithCode(0), "--version");
}

TEST(CommandLine, that_is_wrong_is_refused) {
    EXPECT_EXIT(answer({"harbrook", "--nonsense"}), testing::ExitedWithCode(2), "nonsense");
    EXPECT_EXIT(answer({"harbrook", "word"}), testing::ExitedWithCode(2), "no arguments");
}

TEST(CommandLine, of_an_ordinary_start_is_left_alone) {
    EXPECT_EQ(answer({"harbrook"}), (gtk::Start{gtk::StartedBy::user, false}));
    EXPECT_EQ(answer({"harbrook", "--gapplication-service"}), (gtk::Start{gtk::StartedBy::bus, false}));
    EXPECT_EQ(answer({"harbrook", "--new-instance"}), (gtk::Start{gtk::StartedBy::user, true}));
}

TEST(ProcessSetup, opens_standard_streams_that_were_closed) {
    EXPECT_EXIT(
        {
            close(STDIN_FILENO);
            close(STDOUT_FILENO);
            gtk::setUpProcess();
            const bool open = fcntl(STDIN_FILENO, F_GETFD) != -1 && fcntl(STDOUT_FILENO, F_GETFD) != -1;
            std::exit(open ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ProcessSetup, has_children_waited_for_and_broken_pipes_reported) {
    EXPECT_EXIT(
        {
            std::signal(SIGCHLD, SIG_IGN);
            gtk::setUpProcess();
            struct sigaction child {};
            struct sigaction pipe {};
            sigaction(SIGCHLD, nullptr, &child);
            sigaction(SIGPIPE, nullptr, &pipe);
            std::exit(child.sa_handler == SIG_DFL && pipe.sa_handler == SIG_IGN ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace

} // namespace harbrook::tests
