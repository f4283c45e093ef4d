#include "tests/macos/running/messages/MessageLog.h"
#include "tests/macos/running/scenarios/Operations.h"

#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::printf(
        "%ld messages; %ld operations of the double compared with them\n",
        harbrook::running::MessageLog::count, harbrook::running::comparedOperations());
    return result;
}
