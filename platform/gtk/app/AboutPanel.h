#pragma once

#include "platform/Application.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// The toolkit's About panel, not shown yet. Closing it hides it.
[[nodiscard]] GObjectPtr<GtkWindow> makeAboutPanel();

/// Shows the panel in front, with the program's name, version and icon and with what `options` has. `parent`,
/// the window it belongs to, may be null.
void showAboutPanel(GtkWindow* panel, const AboutPanelOptions& options, GtkWindow* parent);

} // namespace harbrook::gtk
