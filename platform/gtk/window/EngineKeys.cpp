#include "platform/gtk/window/EngineKeys.h"

namespace harbrook::gtk {

void withholdUnsafeKeys(GtkWindow* window) {
    const auto withhold = [](GtkWidget*, GVariant*, void*) noexcept -> gboolean { return TRUE; };
    GtkEventController* keys = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(keys), gtk_shortcut_new(
                                           gtk_keyval_trigger_new(GDK_KEY_F7, GdkModifierType{}),
                                           gtk_callback_action_new(withhold, nullptr, nullptr)));
    gtk_widget_add_controller(GTK_WIDGET(window), keys);
}

} // namespace harbrook::gtk
