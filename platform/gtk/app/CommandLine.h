#pragma once

namespace harbrook::gtk {

/// Who has started the program: a user, or the session bus on behalf of a message that waits for it.
enum class StartedBy { user, bus };

/// How this start was asked for.
struct Start {
    StartedBy by = StartedBy::user;
    /// It runs by itself, whatever runs already.
    bool asNewInstance = false;
    bool operator==(const Start&) const = default;
};

/// Answers a command line that asks for the version or for help, or that is wrong, and ends the process;
/// returns for any other. Needs no display and touches nothing of the toolkit.
Start answerCommandLine(int argc, char** argv);

} // namespace harbrook::gtk
