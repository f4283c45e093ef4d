#pragma once

#include <string>

namespace harbrook::running {

/// A value by what it is, any other object by its name.
[[nodiscard]] std::string describe(id object);
/// Class and number.
[[nodiscard]] std::string nameOf(id object);
[[nodiscard]] Class superclassOf(Class which);
[[nodiscard]] std::string nameOfClass(Class which);

} // namespace harbrook::running
