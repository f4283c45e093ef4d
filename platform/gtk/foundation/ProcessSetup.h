#pragma once

namespace harbrook::gtk {

/// Puts right what the process may have been started with or without: every standard stream is open, so that
/// no other file takes its number; children that exit can be waited for; and writing to a pipe that nobody
/// reads is an error, not a signal. To be called before anything else opens a file.
void setUpProcess();

} // namespace harbrook::gtk
