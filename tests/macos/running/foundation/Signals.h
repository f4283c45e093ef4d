#pragma once

namespace harbrook::running {

/// The process receives a signal that the program watches.
void receiveSignal(int number);

} // namespace harbrook::running
