#pragma once

#include "tests/macos/running/messages/Signatures.h"
#include "tests/macos/running/runtime/Layout.h"

#include <cstdint>
#include <string>
#include <vector>

namespace harbrook::running {

/// A message taken out of its registers.
struct Message {
    struct Argument {
        char type;
        std::uintptr_t word = 0;
        double numbers[4] = {};
    };

    id receiver;
    SEL selector;
    bool isForClass;
    /// Null when nobody declared it.
    const Signature* signature;
    std::vector<Argument> arguments;
};

[[nodiscard]] Message messageIn(const MessageFrame& frame, bool isLarge);

/// As Objective-C is written: `NSWindow#1 setFrame: (0, 0) 10 x 20 display: true`.
[[nodiscard]] std::string describe(const Message& message);
[[nodiscard]] std::string describe(id object);
[[nodiscard]] std::string nameOf(id object);

} // namespace harbrook::running
