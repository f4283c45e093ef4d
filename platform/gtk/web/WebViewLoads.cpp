#include "platform/gtk/web/WebView.h"

#include <utility>

// Loads: asked for by the shell, and what becomes of them.

namespace harbrook::gtk {

namespace {

/// Nothing to see and nothing to fetch: the canvas shows through. What it holds has the engine load its fonts
/// and start its script engine before the first page needs them (10 to 15 ms of that page's first frame).
constexpr auto blankDocument =
    "<!doctype html><meta name=color-scheme content='light dark'>"
    "<body aria-hidden=true style='visibility:hidden;font:14px sans-serif'>Aa <b>Aa</b><button>Aa</button>"
    "<script>requestAnimationFrame(() => 0)</script>";

Error errorFrom(const GError& error) {
    return {error.message};
}

LoadTracker::Failure kindOf(const GError& error) {
    const bool cancelled = g_error_matches(&error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED);
    return cancelled ? LoadTracker::Failure::cancelled : LoadTracker::Failure::other;
}

} // namespace

void WebView::warmUp() {
    loads_.warmUpBegan();
    webkit_web_view_load_html(web_.get(), blankDocument, nullptr);
}

void WebView::loadRequest(const URLRequest& request) {
    const auto native =
        GObjectPtr<WebKitURIRequest>::adopt(webkit_uri_request_new(request.url.absoluteString().c_str()));
    if (auto* headers = webkit_uri_request_get_http_headers(native.get())) {
        for (const auto& [name, value] : request.headerFields) {
            soup_message_headers_replace(headers, name.c_str(), value.c_str());
        }
    }
    loads_.ownLoadRequested(webkit_uri_request_get_uri(native.get()));
    limitWait(request.timeoutInterval);
    webkit_web_view_load_request(web_.get(), native.get());
}

void WebView::reload() {
    // There is nothing to reload but the blank document.
    if (!loads_.hasPage()) return;
    loads_.ownLoadRequested(address());
    webkit_web_view_reload(web_.get());
}

void WebView::limitWait(double seconds) {
    endWait();
    const auto expired = [](void* self) noexcept -> gboolean {
        auto& view = *static_cast<WebView*>(self);
        view.waitLimit_ = 0;
        webkit_web_view_stop_loading(view.web_.get());
        return G_SOURCE_REMOVE;
    };
    waitLimit_ = g_timeout_add(static_cast<guint>(seconds * 1000), expired, this);
}

void WebView::endWait() {
    if (waitLimit_) g_source_remove(std::exchange(waitLimit_, 0));
}

std::string WebView::address() const {
    const char* address = webkit_web_view_get_uri(web_.get());
    return address ? address : "";
}

void WebView::loadChanged(WebKitLoadEvent event) {
    const auto self = shared_from_this();
    if (event == WEBKIT_LOAD_STARTED) loads_.started();
    const bool hadPage = loads_.hasPage();
    const bool blankInstead = event == WEBKIT_LOAD_COMMITTED && loads_.committedBlankInstead(address());
    if (!loads_.awaitsOwnLoad()) endWait();
    if (!hadPage && loads_.hasPage()) firstPageDidAppear_();
    const auto delegate = navigationDelegate_.lock();
    if (blankInstead && delegate) delegate->didFailProvisionalNavigation({"The port is not allowed."});
}

void WebView::loadFailed(WebKitLoadEvent event, const char* address, const GError& error) {
    const auto self = shared_from_this();
    if (!loads_.reportsFailure(address ? address : "", kindOf(error))) return;
    endWait();
    const auto delegate = navigationDelegate_.lock();
    if (!delegate) return;
    if (event == WEBKIT_LOAD_COMMITTED) {
        delegate->didFailNavigation(errorFrom(error));
    } else {
        delegate->didFailProvisionalNavigation(errorFrom(error));
    }
}

void WebView::processTerminated() {
    const auto self = shared_from_this();
    endWait();
    if (!loads_.reportsTermination()) return;
    if (const auto delegate = navigationDelegate_.lock()) {
        delegate->didFailNavigation({"The process that shows the page has ended."});
    }
}

} // namespace harbrook::gtk
