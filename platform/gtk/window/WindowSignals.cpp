#include "platform/gtk/app/Application.h"
#include "platform/gtk/window/Silent.h"
#include "platform/gtk/window/Window.h"

#include <utility>

// What the toolkit tells a window.

namespace harbrook::gtk {

namespace {

/// A pause of this length between two sizes ends a live resize.
constexpr guint liveResizePauseInMilliseconds = 200;

} // namespace

void Window::connectSignals() {
    // Its area is that of the content. It hears of a new size inside the layout, before the buttons get their
    // places in the same one.
    GtkWidget* probe = makeSilent(GTK_TYPE_DRAWING_AREA);
    gtk_widget_set_can_target(probe, FALSE);
    gtk_widget_insert_before(
        probe, GTK_WIDGET(overlay_.get()), gtk_widget_get_first_child(GTK_WIDGET(overlay_.get())));
    connections_.add(
        probe, "resize",
        [](GtkDrawingArea*, int width, int height, void* self) noexcept {
            static_cast<Window*>(self)->contentSizeDidChange(width, height);
        },
        this);
    connections_.add(
        overlay_.get(), "get-child-position",
        [](GtkOverlay* overlay, GtkWidget* child, GdkRectangle* allocation, void* self) noexcept -> gboolean {
            const auto place = static_cast<Window*>(self)->titlebar_.allocation(
                child, gtk_widget_get_height(GTK_WIDGET(overlay)));
            if (place) *allocation = *place;
            return place.has_value();
        },
        this);
    connections_.add(
        window_.get(), "close-request",
        [](GtkWindow*, void* data) noexcept -> gboolean {
            auto& self = *static_cast<Window*>(data);
            self.orderOut();
            self.application_.windowDidClose();
            return TRUE;
        },
        this);
    connections_.add(
        window_.get(), "notify::is-active",
        [](GtkWindow* window, GParamSpec*, void*) noexcept {
            const auto change =
                gtk_window_is_active(window) ? gtk_widget_remove_css_class : gtk_widget_add_css_class;
            change(GTK_WIDGET(window), "inactive");
        },
        this);
    connections_.add(
        window_.get(), "notify::fullscreened",
        [](GtkWindow*, GParamSpec*, void* self) noexcept {
            static_cast<Window*>(self)->fullScreenDidChange();
        },
        this);
    const auto moveFocus = [](GtkWidget*, GVariant*, void* self) noexcept -> gboolean {
        static_cast<Window*>(self)->moveFocusBetweenPageAndTitlebar();
        return TRUE;
    };
    const auto fullScreen = [](GtkWidget*, GVariant*, void* self) noexcept -> gboolean {
        static_cast<Window*>(self)->toggleFullScreen();
        return TRUE;
    };
    GtkEventController* keys = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    const auto add = [&](guint key, GtkShortcutAction* action) {
        gtk_shortcut_controller_add_shortcut(
            GTK_SHORTCUT_CONTROLLER(keys),
            gtk_shortcut_new(gtk_keyval_trigger_new(key, GdkModifierType{}), action));
    };
    add(GDK_KEY_F5, gtk_named_action_new("app.reload"));
    add(GDK_KEY_F6, gtk_callback_action_new(moveFocus, this, nullptr));
    add(GDK_KEY_F11, gtk_callback_action_new(fullScreen, this, nullptr));
    gtk_widget_add_controller(GTK_WIDGET(window_.get()), keys);
    const auto frameChanged = [](GtkWindow*, GParamSpec*, void* self) noexcept {
        static_cast<Window*>(self)->saveFrameSoon();
    };
    for (const char* property : {"notify::default-width", "notify::default-height", "notify::maximized"}) {
        connections_.add(window_.get(), property, frameChanged, this);
    }
}

void Window::moveFocusBetweenPageAndTitlebar() {
    GtkWidget* focus = gtk_window_get_focus(window_.get());
    GtkWidget* page = contentView_ ? contentView_->widget() : nullptr;
    const bool isOnPage = focus && page && (focus == page || gtk_widget_is_ancestor(focus, page));
    if (isOnPage) {
        titlebar_.grabFocus();
    } else if (page) {
        gtk_widget_grab_focus(page);
    }
}

void Window::contentSizeDidChange(int width, int height) {
    const Size size = {static_cast<double>(width), static_cast<double>(height)};
    if (size == size_) return;
    const Size before = std::exchange(size_, size);
    const auto layout = titlebar_.layoutUnderWay();
    titlebar_.windowSizeDidChange(before, size);
    post(NotificationName::NSWindowDidResizeNotification);

    if (liveResizeEnd_) g_source_remove(liveResizeEnd_);
    const auto paused = [](void* data) noexcept -> gboolean {
        auto& self = *static_cast<Window*>(data);
        self.liveResizeEnd_ = 0;
        self.post(NotificationName::NSWindowDidEndLiveResizeNotification);
        return G_SOURCE_REMOVE;
    };
    liveResizeEnd_ = g_timeout_add(liveResizePauseInMilliseconds, paused, this);
}

void Window::willEnterFullScreen() {
    if (std::exchange(entersFullScreen_, true)) return;
    post(NotificationName::NSWindowWillEnterFullScreenNotification);
}

void Window::fullScreenDidChange() {
    if (gtk_window_is_fullscreen(window_.get())) {
        // Where the desktop itself has begun it, this is the first that the window hears of it.
        willEnterFullScreen();
        styleMask_ |= NSWindowStyleMaskFullScreen;
        titlebar_.setVisible(false);
    } else {
        entersFullScreen_ = false;
        styleMask_ &= ~static_cast<std::uint32_t>(NSWindowStyleMaskFullScreen);
        titlebar_.setVisible(true);
        post(NotificationName::NSWindowDidExitFullScreenNotification);
    }
}

} // namespace harbrook::gtk
