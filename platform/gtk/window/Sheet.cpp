#include "platform/gtk/window/Sheet.h"

#include "platform/gtk/window/StyleSheet.h"

namespace harbrook::gtk {

namespace {

constexpr auto isHiddenKey = "is-hidden-with-window";

template <typename Visit>
void forEachSheet(GtkWindow* parent, Visit visit) {
    GListModel* all = gtk_window_get_toplevels();
    for (guint index = 0; index < g_list_model_get_n_items(all); ++index) {
        const auto each = GObjectPtr<GtkWindow>::adopt(GTK_WINDOW(g_list_model_get_item(all, index)));
        if (gtk_window_get_transient_for(each.get()) == parent && gtk_window_get_modal(each.get())) {
            visit(each.get());
        }
    }
}

} // namespace

GObjectPtr<GtkWindow> makeSheet(GtkWindow* parent, const std::string& description) {
    installStyleSheet();
    auto sheet = GObjectPtr<GtkWindow>::share(GTK_WINDOW(g_object_new(
        GTK_TYPE_WINDOW, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT_DIALOG, "transient-for", parent,
        "modal", TRUE, "resizable", FALSE, "title", g_get_application_name(), nullptr)));
    gtk_accessible_update_property(
        GTK_ACCESSIBLE(sheet.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, description.c_str(), -1);
    // The application's shortcuts hold in the sheet too.
    if (parent) gtk_window_set_application(sheet.get(), gtk_window_get_application(parent));
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

void hideSheets(GtkWindow* parent) {
    forEachSheet(parent, [](GtkWindow* sheet) {
        if (!gtk_widget_get_visible(GTK_WIDGET(sheet))) return;
        g_object_set_data(G_OBJECT(sheet), isHiddenKey, sheet);
        gtk_widget_set_visible(GTK_WIDGET(sheet), FALSE);
    });
}

void showSheets(GtkWindow* parent) {
    forEachSheet(parent, [](GtkWindow* sheet) {
        if (g_object_steal_data(G_OBJECT(sheet), isHiddenKey)) gtk_window_present(sheet);
    });
}

} // namespace harbrook::gtk
