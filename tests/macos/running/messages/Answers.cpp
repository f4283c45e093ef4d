#include "tests/macos/running/messages/Answers.h"

#include "tests/macos/running/World.h"
#include "tests/macos/running/messages/Message.h"
#include "tests/macos/running/messages/Properties.h"
#include "tests/macos/running/runtime/References.h"

#include <array>
#include <cctype>
#include <cstring>
#include <set>
#include <string_view>

namespace harbrook::running {

namespace {

using Kind = Signature::Kind;

bool isTheProgramsOwn(const objc_class& which) {
    return std::string_view(which.name).starts_with("Harbrook");
}

/// Plain values: what is done with them shows where they go.
bool isValue(const objc_class& which) {
    static const std::set<std::string_view> names = {
        "NSString", "NSData",  "NSNumber",          "NSArray",      "NSDictionary",      "NSURL",
        "NSNull",   "NSError", "NSMethodSignature", "NSInvocation", "NSAttributedString"};
    for (const auto* part = &which; part; part = part->super) {
        if (names.contains(part->name)) return true;
    }
    return false;
}

/// Questions that change nothing are left out of the log.
bool isWorthNoting(const Message& message, const objc_class& which) {
    const std::string_view selector = message.selector->name;
    if (selector == "writeToURL:atomically:") return true;
    // The question that makes the application.
    if (selector == "sharedApplication") return !World::hasApplication();
    if (isValue(which) || message.signature->kind == Kind::getter || selector == "standardWindowButton:")
        return false;
    const std::string_view owner = message.signature->owner;
    if (owner.ends_with("NSObject")) return selector == "init" || selector.starts_with("set");
    return true;
}

void checkTypes(const Message& message) {
    static std::set<const objc_selector*> checked;
    if (!message.selector->types || !checked.insert(message.selector).second) return;
    auto declared = std::string(message.signature->types);
    const auto sent = lettersOf(message.selector->types);
    if (sent != declared)
        world().fail(
            describe(message) + " was sent with the types " + sent + ", and is declared with " + declared);
}

/// The name of the property that a setter sets.
std::string nameOfProperty(const char* setter) {
    std::string name = setter + std::strlen("set");
    name.pop_back();
    // "setUIDelegate:" sets "UIDelegate", "setFrame:" sets "frame".
    if (name.size() < 2 || !std::isupper(static_cast<unsigned char>(name[1])))
        name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    return name;
}

/// The name of the property that a getter asks for: "isHidden" asks for "hidden".
std::string nameAsked(const std::string& getter) {
    const bool hasPrefix =
        getter.starts_with("is") && getter.size() > 2 && std::isupper(static_cast<unsigned char>(getter[2]));
    return hasPrefix ? static_cast<char>(std::tolower(getter[2])) + getter.substr(3) : getter;
}

void put(const Property& value, MessageFrame& frame, bool isLarge) {
    frame.result[0] = value.word;
    frame.floatingResult[0] = value.numbers[0];
    frame.floatingResult[1] = value.numbers[1];
    if (isLarge) std::memcpy(reinterpret_cast<void*>(frame.general[0]), value.numbers, sizeof value.numbers);
}

id makeResult(const Message& message) {
    const std::string_view name = message.signature->result;
    if (name.empty()) return nullptr;
    const auto own = reinterpret_cast<Class>(message.receiver);
    auto* const which = name == "instancetype" && message.isForClass ? own : classNamed(std::string(name));
    return which ? objc_autorelease(makeObject(which)) : nullptr;
}

} // namespace

void noteMessage(const MessageFrame& frame, bool isLarge, Class answeredBy) {
    if (!World::isThere() || (answeredBy && isTheProgramsOwn(*answeredBy))) return;
    const auto message = messageIn(frame, isLarge);
    const auto& which =
        message.isForClass ? *reinterpret_cast<Class>(message.receiver) : *message.receiver->isa;
    if (isBlock(message.receiver)) return;
    if (!message.signature) {
        world().fail(
            std::string(which.name) + " is sent " + message.selector->name + ", which nobody declared");
        return;
    }
    ++MessageLog::count;
    checkTypes(message);
    if (message.signature->isForMainThread && !world().scheduler.isMainThread())
        world().fail(describe(message) + " off the main thread");
    if (world().isDescribing() || !isWorthNoting(message, which)) return;
    const World::Describing describing;
    world().note(describe(message));
}

void noteCallback(id receiver, const objc_selector& selector, Class answeredBy) {
    if (!World::isThere() || !isTheProgramsOwn(*answeredBy)) return;
    const std::string_view name = selector.name;
    if (name == "respondsToSelector:" || name == "methodSignatureForSelector:" || name == "dealloc") return;
    world().note("> " + describe(receiver) + " " + selector.name);
}

void answerMessage(MessageFrame& frame, bool isLarge) {
    frame.result[0] = frame.result[1] = 0;
    frame.floatingResult[0] = frame.floatingResult[1] = 0;
    const auto message = messageIn(frame, isLarge);
    if (isLarge) {
        std::memset(reinterpret_cast<void*>(frame.general[0]), 0, 4 * sizeof(double));
        frame.result[0] = frame.general[0];
    }
    if (!message.signature) return;
    const std::string name = message.selector->name;
    switch (message.signature->kind) {
    case Kind::setter:
    case Kind::weakSetter: {
        const auto& argument = message.arguments.front();
        Property value{argument.type, argument.word, {}, false, 0};
        std::memcpy(value.numbers, argument.numbers, sizeof value.numbers);
        value.isKept = argument.type == '@' && message.signature->kind == Kind::setter;
        return setProperty(message.receiver, nameOfProperty(name.c_str()), value);
    }
    case Kind::getter:
        if (const auto* const value = property(message.receiver, nameAsked(name)))
            return put(*value, frame, isLarge);
        if (const auto made = makeResult(message)) {
            give(message.receiver, nameAsked(name), made);
            frame.result[0] = reinterpret_cast<std::uintptr_t>(made);
        }
        return;
    case Kind::method:
        const bool isInitializer = name.starts_with("init");
        if (message.signature->types[0] == '@')
            frame.result[0] =
                reinterpret_cast<std::uintptr_t>(isInitializer ? message.receiver : makeResult(message));
    }
}

} // namespace harbrook::running
