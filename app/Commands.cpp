#include "app/AppDelegate.h"
#include "app/Invariant.h"
#include "app/MainMenu.h"
#include "app/Product.h"

namespace harbrook {

void AppDelegate::buildMenu() {
    assertMainThread();
    platform_->sharedApplication().setMainMenu(mainMenu());
}

void AppDelegate::go(const std::string& hash) {
    showWindow();
    required(webView).evaluateJavaScript("location.hash = '" + hash + "'");
}

void AppDelegate::goHome() {
    go("#/");
}

void AppDelegate::goServices() {
    go("#/services");
}

void AppDelegate::goDocker() {
    go("#/docker");
}

void AppDelegate::goPorts() {
    go("#/ports");
}

void AppDelegate::goSettings() {
    go("#/settings");
}

void AppDelegate::goAbout() {
    go("#/about");
}

void AppDelegate::reload() {
    required(webView).reload();
}

void AppDelegate::toggleSidebar() {
    required(webView).evaluateJavaScript("document.getElementById('toggleSide').click()");
}

void AppDelegate::checkUpdates() {
    showWindow();
    required(webView).evaluateJavaScript("window.openUpdate && window.openUpdate()");
}

void AppDelegate::openWebsite() {
    openURL(product::website);
}

void AppDelegate::emailDeveloper() {
    openURL(product::supportMail);
}

void AppDelegate::openLog() {
    platform_->sharedWorkspace().openURL(URL::fileURLWithPath(globals_->dataDir / "logs/server.log"));
}

void AppDelegate::showAbout() {
    constexpr double creditsSize = 11;
    AboutPanelOptions options;
    options.credits = AttributedString{
        std::string(product::credits), Font::systemFontOfSize(creditsSize), Color::secondaryLabelColor()};
    auto& app = platform_->sharedApplication();
    app.orderFrontStandardAboutPanelWithOptions(options);
    app.activateIgnoringOtherApps(true);
}

void AppDelegate::openURL(std::string_view text) {
    platform_->sharedWorkspace().openURL(required(URL::URLWithString(text)));
}

} // namespace harbrook
