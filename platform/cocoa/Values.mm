#include "platform/Application.h"
#include "platform/Menu.h"
#include "platform/Network.h"
#include "platform/Panels.h"
#include "platform/StatusItem.h"
#include "platform/WebView.h"
#include "platform/Window.h"
#include "platform/cocoa/Frameworks.h"

// The seam gives its enumerations the platform's own values, and a plain cast carries them over.

namespace harbrook {

namespace {

template <typename Ours, typename Theirs>
constexpr bool same(Ours ours, Theirs theirs) {
    return static_cast<long long>(ours) == static_cast<long long>(theirs);
}

} // namespace

static_assert(same(ActivationPolicy::regular, NSApplicationActivationPolicyRegular));

static_assert(same(NSWindowStyleMaskTitled, ::NSWindowStyleMaskTitled));
static_assert(same(NSWindowStyleMaskClosable, ::NSWindowStyleMaskClosable));
static_assert(same(NSWindowStyleMaskMiniaturizable, ::NSWindowStyleMaskMiniaturizable));
static_assert(same(NSWindowStyleMaskResizable, ::NSWindowStyleMaskResizable));
static_assert(same(NSWindowStyleMaskFullScreen, ::NSWindowStyleMaskFullScreen));
static_assert(same(NSWindowStyleMaskFullSizeContentView, ::NSWindowStyleMaskFullSizeContentView));
static_assert(same(BackingStore::buffered, NSBackingStoreBuffered));
static_assert(same(TitleVisibility::visible, NSWindowTitleVisible));
static_assert(same(TitleVisibility::hidden, NSWindowTitleHidden));
static_assert(same(TitlebarSeparatorStyle::automatic, NSTitlebarSeparatorStyleAutomatic));
static_assert(same(TitlebarSeparatorStyle::none, NSTitlebarSeparatorStyleNone));
static_assert(same(WindowButton::close, NSWindowCloseButton));
static_assert(same(WindowButton::miniaturize, NSWindowMiniaturizeButton));
static_assert(same(WindowButton::zoom, NSWindowZoomButton));
static_assert(same(NSViewWidthSizable, ::NSViewWidthSizable));
static_assert(same(NSViewHeightSizable, ::NSViewHeightSizable));

static_assert(same(NSEventModifierFlagShift, ::NSEventModifierFlagShift));
static_assert(same(NSEventModifierFlagControl, ::NSEventModifierFlagControl));
static_assert(same(NSEventModifierFlagOption, ::NSEventModifierFlagOption));
static_assert(same(NSEventModifierFlagCommand, ::NSEventModifierFlagCommand));
static_assert(same(EventType::leftMouseDown, NSEventTypeLeftMouseDown));

static_assert(same(ImagePosition::imageLeading, NSImageLeading));

static_assert(same(NSModalResponseOK, ::NSModalResponseOK));
static_assert(same(NSModalResponseCancel, ::NSModalResponseCancel));
static_assert(same(NSAlertFirstButtonReturn, ::NSAlertFirstButtonReturn));
static_assert(same(NSAlertSecondButtonReturn, ::NSAlertSecondButtonReturn));

static_assert(same(UserScriptInjectionTime::atDocumentStart, WKUserScriptInjectionTimeAtDocumentStart));
static_assert(same(UserScriptInjectionTime::atDocumentEnd, WKUserScriptInjectionTimeAtDocumentEnd));
static_assert(same(NavigationActionPolicy::cancel, WKNavigationActionPolicyCancel));
static_assert(same(NavigationActionPolicy::allow, WKNavigationActionPolicyAllow));
static_assert(same(CachePolicy::useProtocolCachePolicy, NSURLRequestUseProtocolCachePolicy));

} // namespace harbrook
