#pragma once

namespace harbrook::gtk {

// Whether the web engine can make its sandbox here. Where the system refuses user namespaces, the engine ends
// the whole program when its first web process starts; so a program of the same kind is tried first, beside
// everything else that happens at the start, and only if that fails is the sandbox given up.

/// Starts the trial. Once, while the process has a single thread. Nothing is tried when the user has settled
/// the matter (WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS), or inside Flatpak, whose sandbox the engine uses.
void beginSandboxPreflight();

/// Waits for the outcome and tells the engine. Before the first web view; later calls do nothing. By then the
/// trial has normally long ended.
void finishSandboxPreflight();

} // namespace harbrook::gtk
