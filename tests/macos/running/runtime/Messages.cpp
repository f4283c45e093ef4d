#include "tests/macos/running/messages/Answers.h"
#include "tests/macos/running/runtime/Layout.h"
#include "tests/macos/running/runtime/Loading.h"

// The program's own sources send by `objc_msgSend`; what stands in for the platform is compiled to send by
// `objc_msg_lookup_sender`. So the two are told apart, and only what the program says is checked and noted.

#include <string_view>

using namespace harbrook::running;

extern "C" void messageWithoutMethod();
extern "C" void messageWithoutMethodLarge();

namespace {

Class classAnswering(id receiver) {
    // A class answers by its metaclass, an object by its class.
    prepareClass(receiver->isa->isMetaclass() ? reinterpret_cast<Class>(receiver) : receiver->isa);
    return receiver->isa;
}

Implementation lookup(MessageFrame* frame, bool isLarge) {
    const auto receiver = reinterpret_cast<id>(frame->general[isLarge ? 1 : 0]);
    const auto selector = reinterpret_cast<SEL>(frame->general[isLarge ? 2 : 1]);
    const auto found = findMethod(classAnswering(receiver), selector->name);
    noteMessage(*frame, isLarge, found.owner);
    if (found.method) return found.method->implementation;
    return isLarge ? messageWithoutMethodLarge : messageWithoutMethod;
}

/// Of the slot that clang expects, only the implementation is read.
struct Slot {
    void* unused[4];
    Implementation implementation;
};

} // namespace

extern "C" Implementation messageLookup(MessageFrame* frame) {
    return lookup(frame, false);
}

extern "C" Implementation messageLookupLarge(MessageFrame* frame) {
    return lookup(frame, true);
}

extern "C" void messageAnswer(MessageFrame* frame) {
    answerMessage(*frame, false);
}

extern "C" void messageAnswerLarge(MessageFrame* frame) {
    answerMessage(*frame, true);
}

struct SuperMessage {
    id receiver;
    Class from;
};

extern "C" Implementation objc_msg_lookup_super(SuperMessage* message, SEL selector) {
    const auto found = findMethod(message->from, selector->name);
    return found.method ? found.method->implementation : messageWithoutMethod;
}

extern "C" Slot* objc_msg_lookup_sender(id* receiver, SEL selector, id) {
    static thread_local Slot slots[16];
    static thread_local int next = 0;
    auto& slot = slots[next++ % 16];
    if (!*receiver) {
        slot.implementation = reinterpret_cast<Implementation>(+[]() -> std::uintptr_t { return 0; });
        return &slot;
    }
    const auto found = findMethod(classAnswering(*receiver), selector->name);
    if (found.method) {
        noteCallback(*receiver, *selector, found.owner);
        slot.implementation = found.method->implementation;
        return &slot;
    }
    const bool isLarge = selector->types && selector->types[0] == '{' &&
                         std::string_view(selector->types).starts_with("{CGRect");
    slot.implementation = isLarge ? messageWithoutMethodLarge : messageWithoutMethod;
    return &slot;
}
