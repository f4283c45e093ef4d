#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <cstddef>
#include <cstdint>

namespace harbrook::fuzz {

/// From now on, what the library complains of is a failure.
inline void failAtComplaints() {
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_FATAL_MASK));
}

/// A variant of that type made of any bytes; what they leave undefined is zero.
inline gtk::GVariantPtr variantOf(const char* type, const std::uint8_t* data, std::size_t size) {
    // The library lays no bytes out that are not aligned; a copy is.
    const gtk::GBytesPtr bytes(g_bytes_new(data, size));
    return gtk::GVariantPtr(
        g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE(type), bytes.get(), FALSE)));
}

} // namespace harbrook::fuzz
