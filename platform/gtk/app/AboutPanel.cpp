#include "platform/gtk/app/AboutPanel.h"

#include "platform/gtk/foundation/Identity.h"
#include "platform/gtk/window/TextStyle.h"

namespace harbrook::gtk {

namespace {

/// The panel's own label for the text under the version. The panel takes text there but no style for it.
GtkLabel* creditsLabel(GtkWindow* panel) {
    GObject* label =
        gtk_widget_get_template_child(GTK_WIDGET(panel), GTK_TYPE_ABOUT_DIALOG, "comments_label");
    return label && GTK_IS_LABEL(label) ? GTK_LABEL(label) : nullptr;
}

} // namespace

GObjectPtr<GtkWindow> makeAboutPanel() {
    auto panel = GObjectPtr<GtkWindow>::share(GTK_WINDOW(gtk_about_dialog_new()));
    auto* about = GTK_ABOUT_DIALOG(panel.get());
    gtk_about_dialog_set_program_name(about, applicationName);
    gtk_about_dialog_set_version(about, HARBROOK_VERSION);
    // A start from a place that has not been installed may find no icon.
    auto* icons = gtk_icon_theme_get_for_display(gtk_widget_get_display(GTK_WIDGET(about)));
    const bool hasIcon = gtk_icon_theme_has_icon(icons, applicationIdentifier);
    gtk_about_dialog_set_logo_icon_name(about, hasIcon ? applicationIdentifier : nullptr);
    gtk_window_set_hide_on_close(panel.get(), TRUE);
    return panel;
}

void showAboutPanel(GtkWindow* panel, const AboutPanelOptions& options, GtkWindow* parent) {
    if (options.credits) {
        gtk_about_dialog_set_comments(GTK_ABOUT_DIALOG(panel), options.credits->string.c_str());
        if (auto* label = creditsLabel(panel)) {
            const auto& credits = *options.credits;
            gtk_label_set_attributes(label, textAttributes(credits.font, credits.foregroundColor).get());
        }
    }
    gtk_window_set_transient_for(panel, parent);
    gtk_window_present(panel);
    // The panel starts with its first text selected.
    gtk_window_set_focus(panel, nullptr);
}

} // namespace harbrook::gtk
