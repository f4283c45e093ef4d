#include "tests/macos/running/messages/Message.h"

#include "platform/recording/Format.h"
#include "tests/macos/running/runtime/References.h"

#include <algorithm>
#include <cstring>

namespace harbrook::running {

namespace {

/// Hands out the registers in the order in which a caller fills them.
class Registers {
public:
    Registers(const MessageFrame& frame, std::size_t used) : frame_(frame), general_(used) {}

    std::uintptr_t word() {
        constexpr std::size_t count = 6;
        return general_ < count ? frame_.general[general_++] : frame_.stack[stack_++];
    }
    double number() { return frame_.floating[floating_++]; }
    void large(double* numbers, std::size_t count) {
        std::memcpy(numbers, frame_.stack + stack_, count * sizeof(double));
        stack_ += count;
    }

private:
    const MessageFrame& frame_;
    std::size_t general_;
    std::size_t floating_ = 0;
    std::size_t stack_ = 0;
};

Message::Argument argumentIn(Registers& registers, char type) {
    Message::Argument argument{type};
    switch (type) {
    case 'd':
        argument.numbers[0] = registers.number();
        break;
    case 'P':
    case 'S':
        argument.numbers[0] = registers.number();
        argument.numbers[1] = registers.number();
        break;
    case 'R':
        registers.large(argument.numbers, 4);
        break;
    case 'B':
        argument.word = static_cast<unsigned char>(registers.word());
        break;
    case 'q':
        argument.word = registers.word();
        break;
    default:
        argument.word = registers.word();
    }
    return argument;
}

std::string written(const Message::Argument& argument) {
    using recording::format;
    const auto* const n = argument.numbers;
    switch (argument.type) {
    case '@':
        return running::describe(reinterpret_cast<id>(argument.word));
    case ':':
        return argument.word ? reinterpret_cast<SEL>(argument.word)->name : "none";
    case 'B':
        return format(argument.word != 0);
    case 'd':
        return format(n[0]);
    case 'P':
        return format(Point{n[0], n[1]});
    case 'S':
        return format(Size{n[0], n[1]});
    case 'R':
        return format(Rect{{n[0], n[1]}, {n[2], n[3]}});
    case '*':
        return argument.word ? "&…" : "null";
    default:
        return std::to_string(static_cast<std::int64_t>(argument.word));
    }
}

} // namespace

Message messageIn(const MessageFrame& frame, bool isLarge) {
    const std::size_t first = isLarge ? 1 : 0;
    Message message{
        reinterpret_cast<id>(frame.general[first]),
        reinterpret_cast<SEL>(frame.general[first + 1]),
        false,
        nullptr,
        {}};
    message.isForClass = isClass(message.receiver);
    const auto& which =
        message.isForClass ? *reinterpret_cast<Class>(message.receiver) : *message.receiver->isa;
    message.signature = signatureOf(which, message.isForClass, message.selector->name);
    if (!message.signature) return message;
    Registers registers(frame, first + 2);
    for (const char* type = message.signature->types + 1; *type; ++type)
        message.arguments.push_back(argumentIn(registers, *type));
    return message;
}

std::string describe(const Message& message) {
    auto text = message.isForClass ? std::string(reinterpret_cast<Class>(message.receiver)->name)
                                   : nameOf(message.receiver);
    text += " ";
    const std::string name = message.selector->name;
    if (message.arguments.empty()) return text + name;
    std::size_t start = 0;
    for (const auto& argument : message.arguments) {
        const auto end = std::min(name.find(':', start), name.size() - 1) + 1;
        text += (start ? " " : "") + name.substr(start, end - start) + " " + written(argument);
        start = end;
    }
    return text;
}

} // namespace harbrook::running
