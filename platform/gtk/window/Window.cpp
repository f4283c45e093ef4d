#include "platform/gtk/window/Window.h"

#include "platform/gtk/app/Application.h"
#include "platform/gtk/window/Appearance.h"
#include "platform/gtk/window/EngineKeys.h"
#include "platform/gtk/window/Sheet.h"
#include "platform/gtk/window/StyleSheet.h"
#include "platform/gtk/window/TitlebarActions.h"

#include <cmath>
#include <string>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr guint saveDelayInMilliseconds = 500;

GObjectPtr<GtkWindow> makeNativeWindow(GtkApplication* application, Size size) {
    auto window = GObjectPtr<GtkWindow>::share(GTK_WINDOW(gtk_application_window_new(application)));
    gtk_window_set_default_size(window.get(), static_cast<int>(size.width), static_cast<int>(size.height));
    // The program shows the menu bar in its own way.
    gtk_application_window_set_show_menubar(GTK_APPLICATION_WINDOW(window.get()), FALSE);
    gtk_widget_add_css_class(GTK_WIDGET(window.get()), "main-window");
    // A title bar without height: the toolkit's frame around a content that has the whole window.
    GtkWidget* titlebar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_visible(titlebar, FALSE);
    gtk_window_set_titlebar(window.get(), titlebar);
    return window;
}

GObjectPtr<GtkOverlay> makeOverlay(GtkWindow* window) {
    auto overlay = GObjectPtr<GtkOverlay>::sink(GTK_OVERLAY(gtk_overlay_new()));
    gtk_widget_set_overflow(GTK_WIDGET(overlay.get()), GTK_OVERFLOW_HIDDEN);
    gtk_window_set_child(window, GTK_WIDGET(overlay.get()));
    return overlay;
}

} // namespace

Window::Window(
    Application& application, NotificationCenter& center, Rect contentRect, std::uint32_t styleMask)
    : application_(application),
      center_(center),
      styleMask_(styleMask),
      window_(makeNativeWindow(application.native(), contentRect.size)),
      overlay_(makeOverlay(window_.get())),
      style_(GObjectPtr<GtkCssProvider>::adopt(gtk_css_provider_new())),
      edges_(window_.get(), overlay_.get()),
      titlebar_(overlay_.get(), center, contentRect.size),
      press_(window_.get()),
      state_(window_.get(), [this](NotificationName name) { post(name); }),
      placement_(window_.get(), [this] { saveFrameSoon(); }),
      size_(contentRect.size) {
    installStyleSheet();
    withholdUnsafeKeys(window_.get());
    followMiddleClicks(window_.get());
    connectSignals();
}

Window::~Window() {
    for (const guint source : {pendingShow_, pendingSave_, liveResizeEnd_}) {
        if (source) g_source_remove(source);
    }
    gtk_window_destroy(window_.get());
}

void Window::setTitle(const std::string& title) {
    gtk_window_set_title(window_.get(), title.c_str());
    application_.windowTitleDidChange();
}

std::string Window::title() const {
    const char* title = gtk_window_get_title(window_.get());
    return title ? title : "";
}

void Window::setBackgroundColor(const Color& color) {
    backgroundColor_ = color;
    const auto apply = [this] {
        const GdkRGBA concrete = Appearance::current().resolve(*backgroundColor_);
        const GCharPtr text(gdk_rgba_to_string(&concrete));
        const std::string style = std::string("window { background: ") + text.get() + "; }";
        gtk_css_provider_load_from_data(style_.get(), style.c_str(), -1);
    };
    apply();
    if (appearanceObserver_) return;
    appearanceObserver_ = Appearance::current().onChange(apply);
    gtk_style_context_add_provider(
        gtk_widget_get_style_context(GTK_WIDGET(window_.get())), GTK_STYLE_PROVIDER(style_.get()),
        GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

void Window::setMinSize(Size size) {
    gtk_widget_set_size_request(
        GTK_WIDGET(overlay_.get()), static_cast<int>(size.width), static_cast<int>(size.height));
}

void Window::setContentView(std::shared_ptr<harbrook::View> view) {
    contentView_ = std::dynamic_pointer_cast<View>(std::move(view));
    GtkWidget* widget = contentView_ ? contentView_->widget() : nullptr;
    gtk_overlay_set_child(overlay_.get(), widget);
    press_.setContent(widget);
    if (widget) gtk_window_set_focus(window_.get(), widget);
}

void Window::center() {
    placement_.center(size_);
}

void Window::setFrameAutosaveName(const std::string& name) {
    autosave_.emplace(name);
    const auto saved = autosave_->load();
    if (!saved) return;
    gtk_window_set_default_size(
        window_.get(), static_cast<int>(saved->size.width), static_cast<int>(saved->size.height));
    if (saved->topLeft && isReachable(*saved->topLeft, saved->size)) {
        ownTopLeft_ = saved->topLeft;
        placement_.setTopLeft(*saved->topLeft);
    } else {
        placement_.center(saved->size);
    }
    showsMaximized_ = saved->isMaximized;
}

void Window::makeKeyAndOrderFront() {
    if (gtk_widget_get_realized(GTK_WIDGET(window_.get()))) {
        show();
        return;
    }
    if (pendingShow_) return;
    const auto now = [](void* data) noexcept -> gboolean {
        auto& self = *static_cast<Window*>(data);
        self.pendingShow_ = 0;
        self.show();
        return G_SOURCE_REMOVE;
    };
    pendingShow_ = g_idle_add_full(G_PRIORITY_HIGH, now, this, nullptr);
}

void Window::show() {
    gtk_window_present_with_time(window_.get(), placement_.serverTime());
    // Only now: an X11 window manager takes the size and place that a window is mapped with as those to go
    // back to.
    if (std::exchange(showsMaximized_, false)) gtk_window_maximize(window_.get());
    showSheets(window_.get());
}

void Window::orderOut() {
    if (pendingShow_) g_source_remove(std::exchange(pendingShow_, 0));
    if (!isVisible()) return;
    saveFrame();
    dismissMenuBar();
    if (ownTopLeft_) placement_.setTopLeft(*ownTopLeft_);
    hideSheets(window_.get());
    gtk_widget_set_visible(GTK_WIDGET(window_.get()), FALSE);
    showsMaximized_ = gtk_window_is_maximized(window_.get());
    if (showsMaximized_) gtk_window_unmaximize(window_.get());
}

void Window::zoom() {
    performTitlebarClick(window_.get(), TitlebarClick::doubleClick);
}

void Window::toggleFullScreen() {
    if (gtk_window_is_fullscreen(window_.get())) {
        gtk_window_unfullscreen(window_.get());
    } else {
        willEnterFullScreen();
        gtk_window_fullscreen(window_.get());
    }
}

void Window::performWindowDragWithEvent(const Event& event) {
    press_.moveWindow(event);
}

std::uint32_t Window::styleMask() {
    return styleMask_;
}

Rect Window::frame() {
    const auto topLeft = placement_.topLeft().value_or(Point{});
    const double screenHeight = screenSize().height;
    return {{topLeft.x, screenHeight - topLeft.y - size_.height}, size_};
}

std::shared_ptr<harbrook::View> Window::standardWindowButton(WindowButton button) {
    return titlebar_.button(button);
}

std::int64_t Window::windowNumber() {
    // The X11 window is made when the toolkit's is realized, and the first showing may still be under way.
    gtk_widget_realize(GTK_WIDGET(window_.get()));
    if (const auto identifier = placement_.identifier()) return identifier;
    return gtk_application_window_get_id(GTK_APPLICATION_WINDOW(window_.get()));
}

void Window::setMainMenu(const MainMenu& menu) {
    menuBar_ = std::make_unique<MenuBar>(window_.get(), overlay_.get(), menu.model());
    GtkWidget* widget = GTK_WIDGET(window_.get());
    if (editingShortcuts_) gtk_widget_remove_controller(widget, editingShortcuts_.get());
    editingShortcuts_ = menu.editingShortcuts();
    gtk_widget_add_controller(widget, GObjectPtr(editingShortcuts_).release());
}

void Window::dismissMenuBar() {
    if (menuBar_) menuBar_->dismiss();
}

void Window::saveFrame() {
    if (pendingSave_) g_source_remove(std::exchange(pendingSave_, 0));
    if (!isVisible() || gtk_window_is_fullscreen(window_.get())) return;
    SavedFrame frame;
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(window_.get(), &width, &height);
    frame.size = {static_cast<double>(width), static_cast<double>(height)};
    frame.isMaximized = gtk_window_is_maximized(window_.get());
    if (!frame.isMaximized) ownTopLeft_ = placement_.topLeft();
    frame.topLeft = ownTopLeft_;
    if (autosave_) autosave_->save(frame);
}

void Window::saveFrameSoon() {
    if (pendingSave_) return;
    const auto later = [](void* data) noexcept -> gboolean {
        auto& self = *static_cast<Window*>(data);
        self.pendingSave_ = 0;
        self.saveFrame();
        return G_SOURCE_REMOVE;
    };
    pendingSave_ = g_timeout_add(saveDelayInMilliseconds, later, this);
}

void Window::post(NotificationName name) {
    center_.post(name, static_cast<harbrook::Window*>(this));
}

std::shared_ptr<harbrook::Window> makeWindow(
    Application& application, NotificationCenter& center, Rect contentRect, std::uint32_t styleMask) {
    auto window = std::make_shared<Window>(application, center, contentRect, styleMask);
    application.addWindow(window);
    return window;
}

GtkWindow* nativeWindow(const std::shared_ptr<harbrook::Window>& window) {
    const auto native = std::dynamic_pointer_cast<Window>(window);
    return native ? native->native() : nullptr;
}

} // namespace harbrook::gtk
