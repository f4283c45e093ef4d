#include "tests/gtk/support/RealPlatform.h"

#include "tests/gtk/support/PrivateDisplay.h"

#include <gio/gio.h>

#include <array>

namespace harbrook::tests {

Platform& gtkPlatform() {
    static std::string name = "harbrook";
    static std::array<char*, 2> arguments{name.data(), nullptr};
    static const auto platform = makePlatform(1, arguments.data());
    return *platform;
}

std::optional<std::string> provideDisplay() {
    if (underThreadSanitizer) return threadsOfTheToolkit;
    static const PrivateDisplay display;
    // Windows belong to an application that has started up.
    static_cast<void>(gtkPlatform().sharedApplication());
    g_application_register(g_application_get_default(), nullptr, nullptr);
    return std::nullopt;
}

double monotonicSeconds() {
    return static_cast<double>(g_get_monotonic_time()) / G_USEC_PER_SEC;
}

bool runMainLoopUntil(const std::function<bool()>& condition, double seconds) {
    const double deadline = monotonicSeconds() + seconds;
    // Conditions that workers bring about wake no loop; looking again now and then is soon enough.
    constexpr unsigned interval = 5;
    const unsigned tick = g_timeout_add(
        interval, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    bool holds = false;
    while (!(holds = condition()) && monotonicSeconds() < deadline)
        g_main_context_iteration(nullptr, TRUE);
    g_source_remove(tick);
    return holds;
}

} // namespace harbrook::tests
