#pragma once

#include "tests/macos/running/runtime/Layout.h"

namespace harbrook::running {

/// The one copy of a selector's name, so that names are compared by address.
[[nodiscard]] const char* uniqueName(const char* name);

struct FoundMethod {
    objc_method* method = nullptr;
    Class owner = nullptr;
};

/// The method that answers `name` (a unique one) among `from` and the classes above it.
[[nodiscard]] FoundMethod findMethod(Class from, const char* name);

/// Calls the method that `which` itself, and no class above it, has for `name`, if it has one.
void callOwnMethod(id object, Class which, const char* name);

/// Gives a class its size and its place among the others, once.
void prepareClass(Class which);

} // namespace harbrook::running
