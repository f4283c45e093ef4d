#pragma once

#include <string>

namespace harbrook::gtk {

/// Has the libraries of this process do without a session bus where none answers at once: where there is
/// none, and where one is slow or has hung, which every use of it would otherwise wait for. Never starts a
/// bus. Takes a moment at a live bus, and at most half a second at a slow one. Only while the process has a
/// single thread, since it may change the environment.
void doWithoutUnresponsiveSessionBus();

/// The address of a bus that was too slow, and that may answer yet; empty where there is none.
[[nodiscard]] const std::string& slowSessionBusAddress();

} // namespace harbrook::gtk
