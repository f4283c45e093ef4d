#include "tests/macos/running/messages/Signatures.h"

#include "tests/macos/running/runtime/Layout.h"

#include <string_view>
#include <unordered_map>

namespace harbrook::running {

namespace {

using Index = std::unordered_map<std::string, const Signature*>;

const Index& index() {
    static const Index made = [] {
        Index all;
        for (const auto& signature : declaredMessages()) {
            const std::string_view owner = signature.owner;
            // A callback is looked up by its name alone: any class may adopt the protocol.
            const auto key = owner[1] == '<' ? std::string("<") : std::string(owner);
            all.emplace(key + " " + signature.selector, &signature);
        }
        return all;
    }();
    return made;
}

const char* skipPast(const char* text, char opening, char closing) {
    int depth = 0;
    do {
        depth += (*text == opening) - (*text == closing);
        ++text;
    } while (depth > 0);
    return text;
}

char letterOfStructure(std::string_view text) {
    if (text.starts_with("{CGRect")) return 'R';
    if (text.starts_with("{CGPoint")) return 'P';
    return text.starts_with("{CGSize") ? 'S' : 'N';
}

char letterOfSimple(char code) {
    constexpr std::string_view wholeNumbers = "sSiIlLqQ";
    if (wholeNumbers.find(code) != std::string_view::npos) return 'q';
    if (code == 'c') return 'B';
    if (code == '#') return '@';
    return code == 'f' ? 'd' : code;
}

} // namespace

const Signature* signatureOf(const objc_class& which, bool ofClass, const std::string& selector) {
    for (const auto* part = &which; part; part = part->super) {
        const auto found = index().find((ofClass ? "+" : "-") + std::string(part->name) + " " + selector);
        if (found != index().end()) return found->second;
    }
    const auto callback = index().find("< " + selector);
    return callback == index().end() ? nullptr : callback->second;
}

objc_class* classNamed(const std::string& name) {
    for (auto* const declared : declaredClasses()) {
        if (declared->name == name) return declared;
    }
    return nullptr;
}

std::string lettersOf(const char* encoding) {
    std::string letters;
    for (const char* text = encoding; *text;) {
        constexpr std::string_view qualifiers = "rnNoORV0123456789";
        if (qualifiers.find(*text) != std::string_view::npos) {
            ++text;
        } else if (*text == '{') {
            letters += letterOfStructure(text);
            text = skipPast(text, '{', '}');
        } else if (*text == '^' || *text == '*') {
            letters += '*';
            if (*text++ == '*') continue;
            while (*text == '^' || *text == 'r')
                ++text;
            text = *text == '{' ? skipPast(text, '{', '}') : text + 1;
        } else {
            letters += letterOfSimple(*text++);
            // "@?" is a block.
            if (*text == '?') ++text;
        }
    }
    // After the result come receiver and selector.
    return letters.size() < 3 ? letters : letters.substr(0, 1) + letters.substr(3);
}

} // namespace harbrook::running
