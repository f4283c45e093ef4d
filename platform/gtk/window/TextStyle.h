#pragma once

#include "platform/Text.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <pango/pango.h>

namespace harbrook::gtk {

using PangoAttributes = std::unique_ptr<PangoAttrList, FreeWith<pango_attr_list_unref>>;

/// The font as attributes of a whole text. The family is the system's, and its text scaling applies.
[[nodiscard]] PangoAttributes textAttributes(const Font& font);
/// The font and the colour, as it is in the current appearance.
[[nodiscard]] PangoAttributes textAttributes(const Font& font, const Color& color);

} // namespace harbrook::gtk
