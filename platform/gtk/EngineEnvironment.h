#pragma once

#include <gio/gio.h>

namespace harbrook::gtk {

// Two things can be told to the toolkit and to the web engine by environment variable only. They are set for
// this process alone: a program started for the user gets the environment that the user's own start had.

/// Sets `name` unless the user has set it. Only while the process has a single thread: nothing may read the
/// environment meanwhile. Returns whether it was set here.
bool setEngineVariable(const char* name, const char* value);

/// Takes the variables set here out of what `context` hands to the programs it launches.
void hideEngineVariables(GAppLaunchContext* context);

} // namespace harbrook::gtk
