#include "platform/gtk/bus/VariantText.h"

#include <string>

namespace harbrook::gtk {

GVariant* textVariant(std::string_view text) {
    const auto length = static_cast<gssize>(text.size());
    if (g_utf8_validate(text.data(), length, nullptr)) {
        return g_variant_new_take_string(g_strndup(text.data(), text.size()));
    }
    return g_variant_new_take_string(g_utf8_make_valid(text.data(), length));
}

} // namespace harbrook::gtk
