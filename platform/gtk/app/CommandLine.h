#pragma once

namespace harbrook::gtk {

/// Who has started the program: a user, or the session bus on behalf of a message that waits for it.
enum class StartedBy { user, bus };

/// Answers a command line that asks for the version or for help, or that is wrong, and ends the process;
/// returns for any other. Needs no display and touches nothing of the toolkit.
StartedBy answerCommandLine(int argc, char** argv);

} // namespace harbrook::gtk
