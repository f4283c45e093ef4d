#include "platform/gtk/window/View.h"
#include "tests/gtk/support/RealPlatform.h"
#include "tests/gtk/support/ScriptedServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <memory>
#include <string>
#include <vector>

namespace harbrook::tests {

namespace {

/// Keeps what the page posts.
class Mailbox final : public ScriptMessageHandler {
public:
    void didReceiveScriptMessage(const ScriptMessage& message) override {
        if (const auto* text = message.body.as<std::string>()) words.push_back(*text);
    }
    std::vector<std::string> words;
};

/// Asks for a device as soon as it is loaded, and posts what that came to.
ScriptedServer::Reply pageThatAsksFor(const std::string& device) {
    return {ScriptedServer::answer(
        200,
        "<!doctype html><script>const post = word => webkit.messageHandlers.fc.postMessage(word);"
        "navigator.mediaDevices.getUserMedia({" +
            device + ": true}).then(() => post('given'), error => post(error.name))</script>",
        "Content-Type: text/html\r\n")};
}

/// The engine asks for a device only where it has one: here it has its own, made for tests.
class Capture : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (const auto reason = provideDisplay()) GTEST_SKIP() << *reason;
        WebViewConfiguration configuration;
        configuration.userContentController.addScriptMessageHandler(mailbox_, "fc");
        view_ = gtkPlatform().makeWebView({{0, 0}, {800, 600}}, configuration);
        auto* canvas = dynamic_cast<gtk::View&>(*view_).widget();
        auto* settings = webkit_web_view_get_settings(WEBKIT_WEB_VIEW(gtk_widget_get_first_child(canvas)));
        webkit_settings_set_enable_mock_capture_devices(settings, TRUE);
        window_ = gtkPlatform().makeWindow(
            {{0, 0}, {800, 600}}, NSWindowStyleMaskTitled, BackingStore::buffered, false);
        window_->setContentView(view_);
        window_->makeKeyAndOrderFront();
    }

    std::shared_ptr<Mailbox> mailbox_ = std::make_shared<Mailbox>();
    std::shared_ptr<WebView> view_;
    std::shared_ptr<Window> window_;
};

TEST_P(Capture, a_device_that_is_there_is_not_given_to_the_page) {
    const ScriptedServer server([](const auto&) { return pageThatAsksFor(GetParam()); });
    view_->loadRequest(URLRequest(*URL::URLWithString(server.address("/"))));
    ASSERT_TRUE(runMainLoopUntil([&] { return !mailbox_->words.empty(); }));
    EXPECT_THAT(mailbox_->words, testing::ElementsAre("NotAllowedError"));
}

INSTANTIATE_TEST_SUITE_P(Of, Capture, testing::Values("audio", "video"), [](const auto& device) {
    return device.param;
});

} // namespace

} // namespace harbrook::tests
