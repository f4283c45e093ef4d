#pragma once

namespace harbrook::gtk {

/// Answers a command line that asks for the version or for help, or that is wrong, and ends the process;
/// returns for any other. Needs no display and touches nothing of the toolkit.
void answerCommandLine(int argc, char** argv);

} // namespace harbrook::gtk
