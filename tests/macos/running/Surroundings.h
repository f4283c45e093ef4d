#pragma once

namespace harbrook::running {

/// How many observers there are whose object has gone.
[[nodiscard]] int observersLeftBehind();

/// Lets go of all that the platform keeps for a program: shared objects, observers, sheets, the page.
void forgetSurroundings();

} // namespace harbrook::running
