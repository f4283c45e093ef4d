#include "app/AppDelegate.h"
#include "app/Invariant.h"

namespace harbrook {

namespace {

constexpr Rect initialFrame = {{0, 0}, {1320, 860}};
constexpr Size minimumSize = {1040, 680};
constexpr double labelSize = 15;
constexpr double labelMaximumWidth = 520;
constexpr int labelMaximumLines = 3;
constexpr double loadTimeout = 60;

constexpr std::uint32_t styleMask = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                    NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable |
                                    NSWindowStyleMaskFullSizeContentView;

SRGBColor canvasForAppearance(const Appearance& appearance) {
    const auto match = appearance.bestMatchFromAppearancesWithNames(
        {AppearanceName::NSAppearanceNameDarkAqua, AppearanceName::NSAppearanceNameAqua});
    if (match == AppearanceName::NSAppearanceNameDarkAqua) return {22.0 / 255, 24.0 / 255, 22.0 / 255, 1.0};
    return {243.0 / 255, 244.0 / 255, 240.0 / 255, 1.0};
}

/// Gives the page the token, and tells it that it runs inside the shell.
UserScript tokenScript(const std::string& apiToken) {
    return {
        "window.__FC_TOKEN='" + apiToken + "';document.documentElement.classList.add('native');",
        UserScriptInjectionTime::atDocumentStart, true};
}

} // namespace

const Color& AppDelegate::canvas() {
    static const Color color = Color::colorWithDynamicProvider(canvasForAppearance);
    return color;
}

void AppDelegate::buildWindow() {
    assertMainThread();
    WebViewConfiguration configuration;
    configuration.setWebsiteDataStore(WebsiteDataStore::defaultDataStore);
    configuration.userContentController.addUserScript(tokenScript(globals_->apiToken));
    configuration.userContentController.addScriptMessageHandler(weak_from_this(), "fc");

    webView = platform_->makeWebView({}, configuration);
    webView->setNavigationDelegate(weak_from_this());
    webView->setUIDelegate(weak_from_this());
    webView->setValueForKey(false, "drawsBackground");
    webView->setUnderPageBackgroundColor(canvas());
    webView->setFrame(initialFrame);
    webView->setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);

    window = platform_->makeWindow(initialFrame, styleMask, BackingStore::buffered, false);
    window->setTitle("Harbrook");
    window->setTitleVisibility(TitleVisibility::hidden);
    window->setTitlebarAppearsTransparent(true);
    window->setTitlebarSeparatorStyle(TitlebarSeparatorStyle::none);
    window->setBackgroundColor(canvas());
    window->setMinSize(minimumSize);
    window->setContentView(webView);
    window->center();
    watchTrafficLights();
    // After centring: a frame that an earlier run left takes the place of the centred one.
    window->setFrameAutosaveName("HarbrookMain");
    window->setReleasedWhenClosed(false);

    loadingLabel = platform_->labelWithString("Starting Harbrook…");
    loadingLabel->setFont(Font::systemFontOfSize(labelSize, FontWeight::medium));
    loadingLabel->setTextColor(Color::secondaryLabelColor());
    loadingLabel->setAlignment(TextAlignment::center);
    loadingLabel->setMaximumNumberOfLines(labelMaximumLines);
    loadingLabel->setTranslatesAutoresizingMaskIntoConstraints(false);
    webView->addSubview(loadingLabel);
    platform_->activateConstraints({
        {loadingLabel, LayoutAttribute::centerX, LayoutRelation::equal, webView, 0},
        {loadingLabel, LayoutAttribute::centerY, LayoutRelation::equal, webView, 0},
        {loadingLabel, LayoutAttribute::width, LayoutRelation::lessThanOrEqual, nullptr, labelMaximumWidth},
    });

    showWindow();
}

void AppDelegate::showWindow() {
    assertMainThread();
    required(window).makeKeyAndOrderFront();
    platform_->sharedApplication().activateIgnoringOtherApps(true);
}

void AppDelegate::loadBaseURL() {
    URLRequest request(globals_->baseURL());
    request.timeoutInterval = loadTimeout;
    required(webView).loadRequest(request);
}

} // namespace harbrook
