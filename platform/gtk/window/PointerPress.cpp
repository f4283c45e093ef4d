#include "platform/gtk/window/PointerPress.h"

#include <utility>

namespace harbrook::gtk {

class PointerPress::LeftMouseDown final : public Event {
public:
    explicit LeftMouseDown(GdkEvent* event) : event_(gdk_event_ref(event)) {}

    [[nodiscard]] EventType type() const override { return EventType::leftMouseDown; }
    [[nodiscard]] GdkEvent* native() const { return event_.get(); }

private:
    std::unique_ptr<GdkEvent, FreeWith<gdk_event_unref>> event_;
};

PointerPress::PointerPress(GtkWindow* window) : window_(window) {
    GtkEventController* controller = gtk_event_controller_legacy_new();
    gtk_event_controller_set_propagation_phase(controller, GTK_PHASE_CAPTURE);
    const auto happened = [](GtkEventControllerLegacy*, GdkEvent* event, void* self) noexcept -> gboolean {
        static_cast<PointerPress*>(self)->handle(event);
        return GDK_EVENT_PROPAGATE;
    };
    connections_.add(controller, "event", happened, this);
    gtk_widget_add_controller(GTK_WIDGET(window), controller);
}

void PointerPress::handle(GdkEvent* event) {
    const bool isLeftButton = [event] {
        const auto type = gdk_event_get_event_type(event);
        return (type == GDK_BUTTON_PRESS || type == GDK_BUTTON_RELEASE) &&
               gdk_button_event_get_button(event) == GDK_BUTTON_PRIMARY;
    }();
    switch (gdk_event_get_event_type(event)) {
    case GDK_BUTTON_PRESS:
        if (isLeftButton) began(event);
        break;
    case GDK_BUTTON_RELEASE:
        if (isLeftButton) held_.reset();
        break;
    case GDK_MOTION_NOTIFY:
        if (!held_) break;
        if (gdk_event_get_modifier_state(event) & GDK_BUTTON1_MASK) {
            double x = 0;
            double y = 0;
            if (gdk_event_get_position(event, &x, &y)) startMoveWhenFarEnough(x, y);
        } else {
            held_.reset();
        }
        break;
    default:
        break;
    }
}

void PointerPress::began(GdkEvent* event) {
    held_.reset();
    movesWindow_ = false;
    double x = 0;
    double y = 0;
    double surfaceX = 0;
    double surfaceY = 0;
    if (!gdk_event_get_position(event, &x, &y)) return;
    gtk_native_get_surface_transform(GTK_NATIVE(window_), &surfaceX, &surfaceY);
    GtkWidget* under = gtk_widget_pick(GTK_WIDGET(window_), x - surfaceX, y - surfaceY, GTK_PICK_DEFAULT);
    if (!under || !content_ || !(under == content_ || gtk_widget_is_ancestor(under, content_))) return;
    held_ = std::make_shared<const LeftMouseDown>(event);
}

std::shared_ptr<const Event> PointerPress::current() {
    if (!held_) return nullptr;
    GdkSurface* surface = gdk_event_get_surface(held_->native());
    GdkModifierType state = {};
    // The release may have gone to somebody else.
    if (!gdk_surface_get_device_position(
            surface, gdk_event_get_device(held_->native()), nullptr, nullptr, &state) ||
        !(state & GDK_BUTTON1_MASK)) {
        held_.reset();
    }
    return held_;
}

void PointerPress::moveWindow(const Event& event) {
    if (!held_ || &event != held_.get()) return;
    movesWindow_ = true;
    double x = 0;
    double y = 0;
    GdkModifierType state = {};
    if (gdk_surface_get_device_position(
            gdk_event_get_surface(held_->native()), gdk_event_get_device(held_->native()), &x, &y, &state)) {
        startMoveWhenFarEnough(x, y);
    }
}

void PointerPress::startMoveWhenFarEnough(double x, double y) {
    if (!movesWindow_) return;
    GdkEvent* press = held_->native();
    double startX = 0;
    double startY = 0;
    gdk_event_get_position(press, &startX, &startY);
    if (!gtk_drag_check_threshold(
            GTK_WIDGET(window_), static_cast<int>(startX), static_cast<int>(startY), static_cast<int>(x),
            static_cast<int>(y))) {
        return;
    }
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window_));
    const auto moved = std::exchange(held_, nullptr);
    if (!GDK_IS_TOPLEVEL(surface)) return;
    gdk_toplevel_begin_move(
        GDK_TOPLEVEL(surface), gdk_event_get_device(press), GDK_BUTTON_PRIMARY, startX, startY,
        gdk_event_get_time(press));
}

} // namespace harbrook::gtk
