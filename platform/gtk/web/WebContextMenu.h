#pragma once

#include <webkit/webkit.h>

namespace harbrook::gtk {

/// Leaves in `menu` only what makes sense in the shell: editing, copying a link, reloading, and in debug
/// builds the inspector. Whether anything is left.
bool keepSensibleItems(WebKitContextMenu* menu);

} // namespace harbrook::gtk
