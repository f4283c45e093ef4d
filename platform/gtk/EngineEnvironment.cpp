#include "platform/gtk/EngineEnvironment.h"

#include <vector>

namespace harbrook::gtk {

namespace {

std::vector<const char*>& variablesSetHere() {
    static std::vector<const char*> names;
    return names;
}

} // namespace

bool setEngineVariable(const char* name, const char* value) {
    if (g_getenv(name)) return false;
    g_setenv(name, value, TRUE);
    variablesSetHere().push_back(name);
    return true;
}

void hideEngineVariables(GAppLaunchContext* context) {
    for (const char* name : variablesSetHere())
        g_app_launch_context_unsetenv(context, name);
}

} // namespace harbrook::gtk
