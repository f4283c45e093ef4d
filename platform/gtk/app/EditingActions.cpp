#include "platform/gtk/app/EditingActions.h"

#include <webkit/webkit.h>

#include <algorithm>
#include <iterator>

namespace harbrook::gtk {

namespace {

struct EditingAction {
    std::string_view selector;
    const char* webCommand;
    const char* textAction;
};

constexpr EditingAction actions[] = {
    {"undo:", WEBKIT_EDITING_COMMAND_UNDO, "text.undo"},
    {"redo:", WEBKIT_EDITING_COMMAND_REDO, "text.redo"},
    {"cut:", WEBKIT_EDITING_COMMAND_CUT, "clipboard.cut"},
    {"copy:", WEBKIT_EDITING_COMMAND_COPY, "clipboard.copy"},
    {"paste:", WEBKIT_EDITING_COMMAND_PASTE, "clipboard.paste"},
    {"delete:", "Delete", "selection.delete"},
    {"selectAll:", WEBKIT_EDITING_COMMAND_SELECT_ALL, "selection.select-all"},
};

} // namespace

bool performEditingAction(GtkWidget* focused, std::string_view selector) {
    const auto* action = std::ranges::find(actions, selector, &EditingAction::selector);
    if (action == std::end(actions) || !focused) return false;
    if (GtkWidget* page = gtk_widget_get_ancestor(focused, WEBKIT_TYPE_WEB_VIEW)) {
        webkit_web_view_execute_editing_command(WEBKIT_WEB_VIEW(page), action->webCommand);
        return true;
    }
    return gtk_widget_activate_action_variant(focused, action->textAction, nullptr);
}

} // namespace harbrook::gtk
