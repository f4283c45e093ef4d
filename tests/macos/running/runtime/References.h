#pragma once

#include <string>
#include <vector>

#ifndef __OBJC__
#include "tests/macos/running/runtime/Layout.h"
#endif

// Objects and who holds them. Every object counts its holders; one that is released too often stops the test.

extern "C" {
id objc_retain(id object);
void objc_release(id object);
id objc_autorelease(id object);
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* pool);
}

namespace harbrook::running {

/// A new object of `which`, held once.
[[nodiscard]] id makeObject(Class which);

/// The platform's own name of a class: that of the stand-in's superclass.
[[nodiscard]] std::string publicName(Class which);

/// The number of an object among those of its class, from 1 on, and one among all that were ever made.
[[nodiscard]] long numberOf(id object);
[[nodiscard]] unsigned long serialOf(id object);
/// Whether the object that had `serial` still is at `object`.
[[nodiscard]] bool isAlive(const void* object, unsigned long serial);
[[nodiscard]] bool isBlock(id object);
[[nodiscard]] bool isClass(id object);

/// The objects and blocks that are alive, by class and number, oldest first.
[[nodiscard]] std::vector<std::string> livingObjects();
/// Numbers begin at 1 again. Nothing may be alive.
void restartNumbers();

/// What is autoreleased meanwhile is let go at the end.
class AutoreleasePool {
public:
    AutoreleasePool() : pool_(objc_autoreleasePoolPush()) {}
    ~AutoreleasePool() { objc_autoreleasePoolPop(pool_); }
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

private:
    void* pool_;
};

// For blocks, which are objects too.
void noteBlock(const void* block, bool isAlive);

} // namespace harbrook::running
