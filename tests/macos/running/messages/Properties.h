#pragma once

#include <cstdint>
#include <string>

#ifndef __OBJC__
#include "tests/macos/running/runtime/Layout.h"
#endif

// What objects were given: by the program, through their setters, and by the test, which prepares answers.

namespace harbrook::running {

struct Property {
    char type = '@';
    std::uintptr_t word = 0;
    double numbers[4] = {};
    /// Whether the object keeps what the property holds.
    bool isKept = false;
    unsigned long serial = 0;
};

void setProperty(id object, const std::string& name, Property value);
/// What was given, or null. A weak property whose object has gone holds nil.
[[nodiscard]] const Property* property(id object, const std::string& name);
void forgetProperties(id object);
/// Lets go of everything that classes hold, such as shared objects.
void forgetClassProperties();

// For tests: the answer to a question, before it is asked.
void give(id object, const std::string& name, id value);
void give(id object, const std::string& name, long value);

} // namespace harbrook::running
