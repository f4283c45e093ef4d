#include "app/AppDelegate.h"
#include "app/Invariant.h"
#include "shots/ScreenshotRequest.h"
#include "window/JSString.h"

namespace harbrook {

namespace {

constexpr const char* notificationName = "com.brackenforge.harbrook.shot";

constexpr int attempts = 40;
constexpr double firstCheckDelay = 1.0;
constexpr double nextCheckDelay = 0.4;
constexpr double afterClickDelay = 0.8;
constexpr double finishDelay = 1.0;

constexpr const char* removeOverlays = "document.querySelectorAll('.modal-bg').forEach(x => x.remove())";
constexpr const char* readinessProbe =
    "(() => { const p = document.querySelector('#page'); "
    "return !!p && !p.querySelector('.spin') && p.innerText.length > 50; })()";

/// One request on its way through the page: wait until it is ready, click once, and report. Each step carries
/// the delegate and the request along to the next; requests know nothing of each other.
class ScreenshotRun : public std::enable_shared_from_this<ScreenshotRun> {
public:
    ScreenshotRun(
        std::shared_ptr<AppDelegate> delegate, std::shared_ptr<Platform> platform, ScreenshotRequest request,
        std::filesystem::path readyFile)
        : delegate_(std::move(delegate)),
          platform_(std::move(platform)),
          request_(std::move(request)),
          readyFile_(std::move(readyFile)) {}

    void start() { pollAfter(firstCheckDelay, attempts, false); }

private:
    void pollAfter(double seconds, int attemptsLeft, bool clicked) {
        platform_->mainQueue().asyncAfter(seconds, [self = shared_from_this(), attemptsLeft, clicked] {
            self->poll(attemptsLeft, clicked);
        });
    }

    void poll(int attemptsLeft, bool clicked) {
        webView().evaluateJavaScript(
            readinessProbe,
            [self = shared_from_this(), attemptsLeft, clicked](const std::optional<Value>& result) {
                const auto* ready = result ? result->as<bool>() : nullptr;
                self->probed(ready && *ready, attemptsLeft, clicked);
            });
    }

    void probed(bool ready, int attemptsLeft, bool clicked) {
        if (ready && !clicked && !request_.click.empty()) {
            click(attemptsLeft);
        } else if (ready || attemptsLeft == 0) {
            finish();
        } else {
            pollAfter(nextCheckDelay, attemptsLeft - 1, clicked);
        }
    }

    void click(int attemptsLeft) {
        webView().evaluateJavaScript(
            "document.querySelector(" + jsString(request_.click) + ")?.click()",
            [self = shared_from_this(), attemptsLeft](const std::optional<Value>&) {
                self->pollAfter(afterClickDelay, attemptsLeft, true);
            });
    }

    void finish() {
        platform_->mainQueue().asyncAfter(finishDelay, [self = shared_from_this()] {
            self->platform_->fileManager().writeAtomically(self->request_.token, self->readyFile_);
        });
    }

    WebView& webView() { return required(delegate_->webView); }

    std::shared_ptr<AppDelegate> delegate_;
    std::shared_ptr<Platform> platform_;
    ScreenshotRequest request_;
    std::filesystem::path readyFile_;
};

} // namespace

void AppDelegate::enableScreenshotMode() {
    assertMainThread();
    if (!screenshotModeIsOn(platform_->processInfo().environment())) return;
    platform_->fileManager().writeAtomically(
        std::to_string(required(window).windowNumber()), globals_->dataDir / "shot-window");
    platform_->distributedNotificationCenter().addObserverForName(
        notificationName, [weak = weak_from_this()](const DistributedNotificationCenter::UserInfo& userInfo) {
            if (const auto self = weak.lock()) self->takeScreenshotRequest(userInfo);
        });
}

void AppDelegate::takeScreenshotRequest(const DistributedNotificationCenter::UserInfo& userInfo) {
    assertMainThread();
    auto request = screenshotRequest(userInfo);
    if (!request) return;
    required(webView).evaluateJavaScript(removeOverlays);
    go(request->hash);
    std::make_shared<ScreenshotRun>(
        shared_from_this(), platform_, std::move(*request), globals_->dataDir / "shot-ready")
        ->start();
}

} // namespace harbrook
