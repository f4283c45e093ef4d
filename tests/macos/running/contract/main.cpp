#include "tests/macos/running/messages/MessageLog.h"

#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::printf("%ld messages\n", harbrook::running::MessageLog::count);
    return result;
}
