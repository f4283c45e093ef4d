#pragma once

namespace harbrook::running {

/// Lets go of all that the platform keeps for a program: shared objects, observers, sheets, the page.
void forgetSurroundings();

} // namespace harbrook::running
