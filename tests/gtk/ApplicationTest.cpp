#include "platform/Platform.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace harbrook::tests {
namespace {

/// Whether the application is there before and after it is asked for.
[[noreturn]] void makeInProcess() {
    std::string name = "harbrook";
    std::array<char*, 2> arguments{name.data(), nullptr};
    const auto platform = makePlatform(1, arguments.data());
    const bool before = g_application_get_default() != nullptr;
    static_cast<void>(platform->sharedApplication());
    const bool after = g_application_get_default() != nullptr;
    std::exit(!before && after ? 0 : 1);
}

TEST(Application, is_made_when_it_is_first_asked_for) {
    EXPECT_EXIT(makeInProcess(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace harbrook::tests
