#pragma once

#include <stdexcept>
#include <string>

namespace harbrook::recording {

/// Thrown when the shell, or a test, does what a real desktop would refuse: a window touched off the main
/// thread, a child launched twice, a main thread that waits for itself. A refusal on a worker is thrown again
/// on the test's thread.
struct Refused : std::logic_error {
    using std::logic_error::logic_error;
};

/// A wait of the main thread that nothing will ever end. On a real desktop the program would hang here.
struct WaitsForever : Refused {
    using Refused::Refused;
};

inline void refuseIf(bool wrong, const std::string& reason) {
    if (wrong) throw Refused(reason);
}

} // namespace harbrook::recording
