#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gtk/gtk.h>

#include <string>

namespace harbrook::gtk {

/// A dialog window without a title bar that belongs to `parent` (which may be null) and is modal to it, to be
/// announced by assistive technology as `description`. Escape closes it.
[[nodiscard]] GObjectPtr<GtkWindow> makeSheet(GtkWindow* parent, const std::string& description);
/// The sheet can be moved by its content, as far as that has no other use for the pointer.
void setSheetContent(GtkWindow* sheet, GtkWidget* content);

/// Hides the dialogs that wait for an answer along with their window, and shows them with it again.
void hideSheets(GtkWindow* parent);
void showSheets(GtkWindow* parent);

} // namespace harbrook::gtk
