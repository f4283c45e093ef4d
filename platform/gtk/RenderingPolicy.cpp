#include "platform/gtk/RenderingPolicy.h"

#include "platform/gtk/SandboxPreflight.h"

#include <glib.h>

#include <filesystem>
#include <system_error>

namespace harbrook::gtk {

RenderingPolicy::RenderingPolicy() {
    constexpr gboolean unlessTheUserHas = FALSE;
    if (!hasRenderNode()) g_setenv("GSK_RENDERER", "cairo", unlessTheUserHas);
    beginSandboxPreflight();
}

bool hasRenderNode() {
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/dev/dri", error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().starts_with("renderD")) return true;
    }
    return false;
}

} // namespace harbrook::gtk
