#pragma once

#include <cstddef>
#include <cstdint>

// What clang lays out in memory for Objective-C on x86-64 Linux (-fobjc-runtime=gnustep-2.0). Only for
// sources in plain C++; Objective-C++ has these types built in.

struct objc_selector {
    const char* name;
    const char* types;
};

struct objc_method {
    void (*implementation)();
    objc_selector* selector;
    const char* types;
};

struct objc_method_list {
    objc_method_list* next;
    int count;
    std::size_t size;
    objc_method methods[1];
};

struct objc_ivar {
    const char* name;
    const char* type;
    int* offset;
    std::uint32_t size;
    std::uint32_t flags;
};

struct objc_ivar_list {
    int count;
    std::size_t size;
    objc_ivar ivars[1];
};

struct objc_class {
    objc_class* isa;
    objc_class* super;
    const char* name;
    long version;
    unsigned long info;
    long instanceSize;
    objc_ivar_list* ivars;
    objc_method_list* methods;
    void* prepared;
    void* unused[2];
    void* subclasses;
    void* siblings;
    void* protocols;
    void* extra;
    long abiVersion;
    void* properties;

    [[nodiscard]] bool isMetaclass() const { return (info & 1) != 0; }
};

struct objc_object {
    objc_class* isa;
};

using id = objc_object*;
using Class = objc_class*;
using SEL = objc_selector*;
using Implementation = void (*)();

/// The registers a message came in, and those its answer leaves in.
struct MessageFrame {
    std::uintptr_t general[6];
    double floating[8];
    std::uintptr_t* stack;
    std::uintptr_t result[2];
    double floatingResult[2];
};
