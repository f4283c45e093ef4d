#include "platform/gtk/app/MenuBar.h"

#include <utility>

namespace harbrook::gtk {

namespace {

constexpr GdkModifierType anyModifier = static_cast<GdkModifierType>(
    GDK_SHIFT_MASK | GDK_CONTROL_MASK | GDK_ALT_MASK | GDK_SUPER_MASK | GDK_HYPER_MASK | GDK_META_MASK);

bool isAlt(guint key) {
    return key == GDK_KEY_Alt_L || key == GDK_KEY_Alt_R;
}

bool desktopShowsMenuBar(GtkWidget* widget) {
    gboolean shows = FALSE;
    g_object_get(gtk_widget_get_settings(widget), "gtk-shell-shows-menubar", &shows, nullptr);
    return shows;
}

/// The menu that belongs to an item of the bar.
GtkWidget* popover(GtkWidget* item) {
    for (GtkWidget* child = gtk_widget_get_first_child(item); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_POPOVER(child)) return child;
    }
    return nullptr;
}

} // namespace

MenuBar::MenuBar(GtkWindow* window, GtkOverlay* overlay, GMenuModel* model)
    : window_(window),
      overlay_(overlay),
      bar_(GObjectPtr<GtkWidget>::sink(gtk_popover_menu_bar_new_from_model(model))) {
    gtk_widget_add_css_class(bar_.get(), "main-window-menubar");
    gtk_widget_set_valign(bar_.get(), GTK_ALIGN_START);
    gtk_widget_set_visible(bar_.get(), FALSE);
    gtk_overlay_add_overlay(overlay, bar_.get());
    watchItems();

    keys_ = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys_, GTK_PHASE_CAPTURE);
    connections_.add(
        keys_, "key-pressed",
        [](GtkEventControllerKey* controller, guint key, guint, GdkModifierType state,
           void* self) noexcept -> gboolean {
            GdkEvent* press = gtk_event_controller_get_current_event(GTK_EVENT_CONTROLLER(controller));
            return static_cast<MenuBar*>(self)->keyPressed(key, state, press);
        },
        this);
    connections_.add(
        keys_, "key-released",
        [](GtkEventControllerKey*, guint key, guint, GdkModifierType, void* self) noexcept {
            static_cast<MenuBar*>(self)->keyReleased(key);
        },
        this);
    gtk_widget_add_controller(GTK_WIDGET(window), keys_);

    GtkGesture* click = gtk_gesture_click_new();
    pointer_ = GTK_EVENT_CONTROLLER(click);
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), 0);
    gtk_event_controller_set_propagation_phase(pointer_, GTK_PHASE_CAPTURE);
    connections_.add(
        click, "pressed",
        [](GtkGestureClick*, int, double x, double y, void* self) noexcept {
            static_cast<MenuBar*>(self)->pointerPressed(x, y);
        },
        this);
    gtk_widget_add_controller(GTK_WIDGET(window), pointer_);

    connections_.add(
        window, "notify::is-active",
        [](GtkWindow*, GParamSpec*, void* self) noexcept {
            auto& bar = *static_cast<MenuBar*>(self);
            bar.altIsTapped_ = false;
            bar.leaveSoon();
        },
        this);
    connections_.add(
        window, "notify::focus-widget",
        [](GtkWindow*, GParamSpec*, void* self) noexcept { static_cast<MenuBar*>(self)->leaveSoon(); }, this);
}

MenuBar::~MenuBar() {
    if (pendingLeave_) g_source_remove(pendingLeave_);
    gtk_widget_remove_controller(GTK_WIDGET(window_), keys_);
    gtk_widget_remove_controller(GTK_WIDGET(window_), pointer_);
    gtk_overlay_remove_overlay(overlay_, bar_.get());
}

void MenuBar::watchItems() {
    for (GtkWidget* item = gtk_widget_get_first_child(bar_.get()); item;
         item = gtk_widget_get_next_sibling(item)) {
        GtkWidget* menu = popover(item);
        if (!menu) continue;
        connections_.add(
            menu, "closed",
            [](GtkPopover*, void* self) noexcept { static_cast<MenuBar*>(self)->leaveSoon(); }, this);
    }
}

void MenuBar::toggle() {
    if (gtk_widget_get_visible(bar_.get())) {
        dismiss();
        return;
    }
    if (desktopShowsMenuBar(bar_.get())) return;
    focusBefore_ = GObjectPtr<GtkWidget>::share(gtk_window_get_focus(window_));
    gtk_widget_set_visible(bar_.get(), TRUE);
    gtk_widget_grab_focus(gtk_widget_get_first_child(bar_.get()));
}

void MenuBar::dismiss() {
    if (!gtk_widget_get_visible(bar_.get())) return;
    const auto before = std::exchange(focusBefore_, nullptr);
    GtkWidget* focus = gtk_window_get_focus(window_);
    // Before the bar goes: the toolkit would choose somebody else for a focus that is hidden.
    if (before && (!focus || gtk_widget_is_ancestor(focus, bar_.get()))) gtk_widget_grab_focus(before.get());
    for (GtkWidget* item = gtk_widget_get_first_child(bar_.get()); item;
         item = gtk_widget_get_next_sibling(item)) {
        if (GtkWidget* menu = popover(item)) gtk_popover_popdown(GTK_POPOVER(menu));
    }
    gtk_widget_set_visible(bar_.get(), FALSE);
}

gboolean MenuBar::keyPressed(guint key, GdkModifierType state, GdkEvent* press) {
    // A press that the page has left comes by a second time, as the very same event.
    if (press == lastPress_.get()) return GDK_EVENT_PROPAGATE;
    lastPress_.reset(gdk_event_ref(press));
    altIsTapped_ = isAlt(key) && !(state & anyModifier);
    if (key == GDK_KEY_F10 && !(state & anyModifier)) {
        toggle();
        return GDK_EVENT_STOP;
    }
    GtkWidget* item = gtk_window_get_focus(window_);
    if (!item || gtk_widget_get_parent(item) != bar_.get()) return GDK_EVENT_PROPAGATE;
    return itemKeyPressed(item, key);
}

gboolean MenuBar::itemKeyPressed(GtkWidget* item, guint key) {
    // The toolkit's bar knows the keys of an open menu only.
    const bool isLeftToRight = gtk_widget_get_direction(bar_.get()) != GTK_TEXT_DIR_RTL;
    switch (key) {
    case GDK_KEY_Escape:
        dismiss();
        return GDK_EVENT_STOP;
    case GDK_KEY_Left:
    case GDK_KEY_KP_Left:
        focusNeighbour(item, !isLeftToRight);
        return GDK_EVENT_STOP;
    case GDK_KEY_Right:
    case GDK_KEY_KP_Right:
        focusNeighbour(item, isLeftToRight);
        return GDK_EVENT_STOP;
    case GDK_KEY_Up:
    case GDK_KEY_KP_Up:
    case GDK_KEY_Down:
    case GDK_KEY_KP_Down:
    case GDK_KEY_Return:
    case GDK_KEY_KP_Enter:
    case GDK_KEY_space:
        gtk_widget_activate(item);
        return GDK_EVENT_STOP;
    default:
        return GDK_EVENT_PROPAGATE;
    }
}

void MenuBar::focusNeighbour(GtkWidget* item, bool next) {
    GtkWidget* neighbour = next ? gtk_widget_get_next_sibling(item) : gtk_widget_get_prev_sibling(item);
    if (!neighbour) {
        neighbour = next ? gtk_widget_get_first_child(bar_.get()) : gtk_widget_get_last_child(bar_.get());
    }
    gtk_widget_grab_focus(neighbour);
}

void MenuBar::keyReleased(guint key) {
    if (std::exchange(altIsTapped_, false) && isAlt(key)) toggle();
}

void MenuBar::pointerPressed(double x, double y) {
    altIsTapped_ = false;
    if (!gtk_widget_get_visible(bar_.get())) return;
    GtkWidget* under = gtk_widget_pick(GTK_WIDGET(window_), x, y, GTK_PICK_DEFAULT);
    if (!under || !(under == bar_.get() || gtk_widget_is_ancestor(under, bar_.get()))) dismiss();
}

void MenuBar::leaveSoon() {
    if (pendingLeave_ || !gtk_widget_get_visible(bar_.get())) return;
    const auto later = [](void* self) noexcept -> gboolean {
        auto& bar = *static_cast<MenuBar*>(self);
        bar.pendingLeave_ = 0;
        bar.leaveUnlessInUse();
        return G_SOURCE_REMOVE;
    };
    // Going on to the next menu closes this one first.
    pendingLeave_ = g_idle_add(later, this);
}

void MenuBar::leaveUnlessInUse() {
    if (!isInUse()) dismiss();
}

bool MenuBar::isInUse() const {
    for (GtkWidget* item = gtk_widget_get_first_child(bar_.get()); item;
         item = gtk_widget_get_next_sibling(item)) {
        GtkWidget* menu = popover(item);
        if (menu && gtk_widget_get_visible(menu)) return true;
    }
    GtkWidget* focus = gtk_window_get_focus(window_);
    return gtk_window_is_active(window_) && focus && gtk_widget_is_ancestor(focus, bar_.get());
}

} // namespace harbrook::gtk
