#pragma once

#include <string>
#include <vector>

struct objc_class;

namespace harbrook::running {

/// What a declared message is sent with. `types` has a letter for the result and one for each argument:
/// v nothing, @ object, : selector, B boolean, q whole number, d floating number, P point, S size, R
/// rectangle, N range, * pointer to something else.
struct Signature {
    enum class Kind { method, getter, setter, weakSetter };

    /// "+NSMenuItem", "-NSWindow", "-<NSApplicationDelegate>".
    const char* owner;
    const char* selector;
    const char* types;
    /// The class of the result if that is never nil; "instancetype" for the receiver's own.
    const char* result;
    Kind kind;
    /// Of AppKit or WebKit: for the main thread alone.
    bool isForMainThread;
};

// Generated from api-facts.tsv.
[[nodiscard]] const std::vector<objc_class*>& declaredClasses();
[[nodiscard]] const std::vector<Signature>& declaredMessages();

/// What is declared for `selector` of the class, or null.
[[nodiscard]] const Signature* signatureOf(
    const objc_class& which, bool ofClass, const std::string& selector);
[[nodiscard]] objc_class* classNamed(const std::string& name);

/// The letters of a type encoding that the compiler made, for comparing.
[[nodiscard]] std::string lettersOf(const char* encoding);

} // namespace harbrook::running
