#include "platform/gtk/window/StyleSheet.h"

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

namespace {

constexpr auto styleSheet = R"css(
/* The toolkit's frame with nothing of a title bar in it; the content takes the frame's corners. */
window.main-window.csd { border-radius: 10px; }
window.main-window.maximized, window.main-window.fullscreen, window.main-window.tiled,
window.main-window.tiled-top, window.main-window.tiled-right, window.main-window.tiled-bottom,
window.main-window.tiled-left { border-radius: 0; }
window.main-window > overlay { border-radius: inherit; }
window.main-window.solid-csd { padding: 0; border-width: 0; border-radius: 0; box-shadow: none; }

button.titlebar-button {
  min-width: 14px; min-height: 14px;
  margin: 0; padding: 0;
  border: none; border-radius: 7px;
  box-shadow: none; text-shadow: none; -gtk-icon-shadow: none;
  background-image: none;
  background-color: alpha(@theme_fg_color, 0.22);
  color: alpha(@theme_fg_color, 0.85);
  transition: background-color 120ms ease-out;
}
/* Not :backdrop, which some window managers never bring about. */
window.inactive button.titlebar-button { background-color: alpha(@theme_fg_color, 0.12); }
button.titlebar-button > widget { opacity: 0; }
button.titlebar-button.near > widget, button.titlebar-button:focus-visible > widget { opacity: 1; }
window button.titlebar-button.near { background-color: alpha(@theme_fg_color, 0.22); }
window button.titlebar-button:hover { background-color: alpha(@theme_fg_color, 0.34); }
window button.titlebar-button:active { background-color: alpha(@theme_fg_color, 0.5); }
window button.titlebar-button.close:hover { background-color: #d5493f; color: white; }
window button.titlebar-button.close:active { background-color: #a9362e; color: white; }
button.titlebar-button:focus-visible {
  outline: 2px solid @theme_selected_bg_color; outline-offset: 1px;
}

.main-window-menubar {
  padding: 0 4px;
  color: @theme_fg_color;
  background-color: @theme_bg_color;
  border-bottom: 1px solid alpha(@theme_fg_color, 0.15);
}
.main-window-menubar > item { min-height: 24px; padding: 0 9px; }
.main-window-menubar > item:focus { background-color: alpha(@theme_fg_color, 0.12); }

window.sheet > windowhandle > box { padding: 22px; }
window.sheet label.message { font-size: 1.05em; }
)css";

} // namespace

void installStyleSheet() {
    static const auto provider = [] {
        auto made = GObjectPtr<GtkCssProvider>::adopt(gtk_css_provider_new());
        gtk_css_provider_load_from_data(made.get(), styleSheet, -1);
        gtk_style_context_add_provider_for_display(
            gdk_display_get_default(), GTK_STYLE_PROVIDER(made.get()),
            GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
        return made;
    }();
}

} // namespace harbrook::gtk
