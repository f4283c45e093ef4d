#include "platform/gtk/web/WebContextMenu.h"

#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/window/TitlebarActions.h"

#include <vector>

namespace harbrook::gtk {

namespace {

bool isSensible(WebKitContextMenuAction action) {
    switch (action) {
    case WEBKIT_CONTEXT_MENU_ACTION_CUT:
    case WEBKIT_CONTEXT_MENU_ACTION_COPY:
    case WEBKIT_CONTEXT_MENU_ACTION_PASTE:
    case WEBKIT_CONTEXT_MENU_ACTION_PASTE_AS_PLAIN_TEXT:
    case WEBKIT_CONTEXT_MENU_ACTION_DELETE:
    case WEBKIT_CONTEXT_MENU_ACTION_SELECT_ALL:
    case WEBKIT_CONTEXT_MENU_ACTION_COPY_LINK_TO_CLIPBOARD:
    case WEBKIT_CONTEXT_MENU_ACTION_RELOAD:
        return true;
#ifndef NDEBUG
    case WEBKIT_CONTEXT_MENU_ACTION_INSPECT_ELEMENT:
        return true;
#endif
    default:
        return false;
    }
}

} // namespace

bool showsWindowMenu(GtkWidget* view, WebKitContextMenu* menu, WebKitHitTestResult* hit) {
    if (webkit_hit_test_result_context_is_editable(hit) || webkit_hit_test_result_context_is_link(hit) ||
        webkit_hit_test_result_context_is_selection(hit)) {
        return false;
    }
    GdkEvent* event = webkit_context_menu_get_event(menu);
    auto* window = GTK_WINDOW(gtk_widget_get_root(view));
    double x = 0;
    double y = 0;
    double surfaceX = 0;
    double surfaceY = 0;
    if (!event || !window || !gdk_event_get_position(event, &x, &y)) return false;
    gtk_native_get_surface_transform(GTK_NATIVE(window), &surfaceX, &surfaceY);
    return y - surfaceY < titlebarStrip && performTitlebarClick(window, TitlebarClick::rightClick, event);
}

bool keepSensibleItems(WebKitContextMenu* menu) {
    std::vector<GObjectPtr<WebKitContextMenuItem>> kept;
    bool separatorIsDue = false;
    for (GList* link = webkit_context_menu_get_items(menu); link; link = link->next) {
        auto* item = WEBKIT_CONTEXT_MENU_ITEM(link->data);
        if (webkit_context_menu_item_is_separator(item)) {
            separatorIsDue = !kept.empty();
        } else if (isSensible(webkit_context_menu_item_get_stock_action(item))) {
            if (separatorIsDue) {
                kept.push_back(
                    GObjectPtr<WebKitContextMenuItem>::sink(webkit_context_menu_item_new_separator()));
            }
            separatorIsDue = false;
            kept.push_back(GObjectPtr<WebKitContextMenuItem>::share(item));
        }
    }
    webkit_context_menu_remove_all(menu);
    for (const auto& item : kept)
        webkit_context_menu_append(menu, item.get());
    return !kept.empty();
}

} // namespace harbrook::gtk
