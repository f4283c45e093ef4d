#pragma once

namespace harbrook::gtk {

/// Lets this process do without a session bus, for good, where none answers at once: where there is none, and
/// where one has hung, which every use of it would otherwise wait for. Never starts a bus. Takes a moment at
/// a live bus, and at most half a second at a hung one. Only while the process has a single thread, since it
/// may change the environment.
void doWithoutUnresponsiveSessionBus();

} // namespace harbrook::gtk
