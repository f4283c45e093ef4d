#include "tests/gtk/support/RealPlatform.h"

#include <gtest/gtest.h>

#include <optional>

namespace harbrook::tests {

namespace {

TEST(BlankDocument, runs_no_script_of_the_shells) {
    if (const auto reason = provideDisplay()) GTEST_SKIP() << *reason;
    const auto view = gtkPlatform().makeWebView({{0, 0}, {800, 600}}, WebViewConfiguration());
    bool isAnswered = false;
    std::optional<Value> sum;
    view->evaluateJavaScript("1 + 1", [&](const std::optional<Value>& value) {
        isAnswered = true;
        sum = value;
    });
    ASSERT_TRUE(runMainLoopUntil([&] { return isAnswered; }));
    EXPECT_FALSE(sum.has_value());
}

} // namespace

} // namespace harbrook::tests
