#include "platform/gtk/Sheet.h"

#include "platform/gtk/StyleSheet.h"

namespace harbrook::gtk {

GObjectPtr<GtkWindow> makeSheet(GtkWindow* parent, const std::string& description) {
    installStyleSheet();
    auto sheet = GObjectPtr<GtkWindow>::share(GTK_WINDOW(g_object_new(
        GTK_TYPE_WINDOW, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT_DIALOG, "transient-for", parent,
        "modal", TRUE, "resizable", FALSE, "title", g_get_application_name(), nullptr)));
    gtk_accessible_update_property(
        GTK_ACCESSIBLE(sheet.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, description.c_str(), -1);
    gtk_widget_add_css_class(GTK_WIDGET(sheet.get()), "sheet");
    GtkWidget* titlebar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_visible(titlebar, FALSE);
    gtk_window_set_titlebar(sheet.get(), titlebar);

    GtkEventController* keys = gtk_shortcut_controller_new();
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(keys),
        gtk_shortcut_new(
            gtk_keyval_trigger_new(GDK_KEY_Escape, GdkModifierType{}), gtk_named_action_new("window.close")));
    gtk_widget_add_controller(GTK_WIDGET(sheet.get()), keys);
    return sheet;
}

void setSheetContent(GtkWindow* sheet, GtkWidget* content) {
    GtkWidget* handle = gtk_window_handle_new();
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(handle), content);
    gtk_window_set_child(sheet, handle);
}

} // namespace harbrook::gtk
