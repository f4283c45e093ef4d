#pragma once

#include <functional>

namespace harbrook::gtk {

/// Runs `body` on a thread of its own that nobody waits for: it neither keeps the process alive nor is joined
/// at its end, so `body` owns all that it uses. The thread takes no signals. `name` has at most 15 characters
/// and is shown by debuggers. Throws std::system_error when the system has no thread left. Any thread.
void startThread(const char* name, std::function<void()> body);

} // namespace harbrook::gtk
