"""Makes from api-facts.tsv what the Cocoa sources run against on Linux: the declarations they are compiled with,
an empty class for each declared one (but those that have a body of their own here), what each declared message
is sent with, and the constants.

usage: generate.py DIRECTORY
"""

import re
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tools"))

import facts as fact_table  # noqa: E402
import sysroot  # noqa: E402
from facts import Method, Property  # noqa: E402

# The weights are known; any other number among the constants would have to be added here.
NUMBERS = {"NSFontWeightRegular": 0.0, "NSFontWeightMedium": 0.23, "NSFontWeightSemibold": 0.3, "NSFontWeightBold": 0.4}
STRUCTURES = {"NSRect": "R", "CGRect": "R", "NSPoint": "P", "CGPoint": "P", "NSSize": "S", "CGSize": "S", "NSRange": "N"}
FLOATING = {"CGFloat", "NSTimeInterval", "double", "float"}
OBJECTS = {"id", "instancetype", "Class", "ObjectType", "KeyType", "NSAppearanceName", "NSNotificationName"}
QUALIFIERS = r"\b(_Nullable|_Nonnull|_Null_unspecified|nullable|nonnull|null_unspecified|__kindof|const)\b"


def letter(declared):
    """How an argument or a result of this type is passed, and how the log writes it."""
    plain = re.sub(QUALIFIERS, "", declared).strip()
    plain = re.sub(r"<.*>", "", plain).strip()
    if "^" in plain:
        return "@"
    if plain.count("*") > 1:
        return "*"
    if plain.endswith("*"):
        return "@" if re.match(r"(NS|WK)(?!Rect\b|Point\b|Size\b|Range\b|Integer\b|UInteger\b)", plain) else "*"
    if plain == "void":
        return "v"
    if plain == "BOOL":
        return "B"
    if plain == "SEL":
        return ":"
    if plain in FLOATING:
        return "d"
    if plain in OBJECTS:
        return "@"
    return STRUCTURES.get(plain, "q")


def made(declared, attributes=""):
    """The class of the object that is never nil, or nothing."""
    if "ullable" in declared or "nullable" in attributes.replace("null_unspecified", ""):
        return ""
    if declared.strip() == "instancetype":
        return "instancetype"
    found = re.match(r"(?:__kindof )?((?:NS|WK)\w+)(?:<[^>]*>)? \*$", declared.strip())
    return found.group(1) if found else ""


def signatures(fact):
    """(owner, selector, types, class of the result, kind) of each message that the fact stands for."""
    owner = f"<{fact.owner}>" if "callback" in fact.kind else fact.owner
    parsed = fact.parsed
    if isinstance(parsed, Method):
        sign = "+" if parsed.is_class_method else "-"
        types = letter(parsed.result) + "".join(letter(p) for p in parsed.parameters)
        yield sign + owner, parsed.selector, types, made(parsed.result), "method"
    if isinstance(parsed, Property):
        sign = "+" if parsed.is_class_property else "-"
        attributes = re.match(r"\((.*?)\)", fact.declaration)
        attributes = attributes.group(1) if attributes else ""
        yield sign + owner, parsed.getter, letter(parsed.type), made(parsed.type, attributes), "getter"
        if parsed.setter:
            kind = "weakSetter" if "weak" in attributes.split(", ") else "setter"
            yield sign + owner, parsed.setter, "v" + letter(parsed.type), "", kind


def root_signatures():
    """What every object answers, which the table leaves to the root protocol's declaration."""
    block = re.search(r"@protocol NSObject\n(.*?)@end", (HERE.parent / "sysroot/objc/objc.h").read_text(), re.S).group(1)
    # What boxed 64-bit numbers are made with here.
    yield "+NSNumber", "numberWithLong:", "@q", "NSNumber", "method"
    for declaration in re.findall(r"^(- .*);", block, re.M):
        method = fact_table.parse_method(declaration)
        yield "-NSObject", method.selector, letter(method.result) + "".join(letter(p) for p in method.parameters), "", "method"


def written_by_hand():
    sources = [f.read_text() for f in HERE.rglob("*.mm")]
    return {name for text in sources for name in re.findall(r"^@implementation (\w+)", text, re.M)}


def superclass(fact):
    found = re.match(r"\w+ : (\w+)", fact.declaration)
    return found.group(1) if found and found.group(1) != fact.owner else "NSObject"


def classes_source(facts):
    declared = [f for f in facts if f.kind == "class"]
    by_hand = written_by_hand()
    lines = ['#include "tests/macos/running/messages/Signatures.h"', '#include "tests/macos/running/runtime/Layout.h"', ""]
    for name in sorted({f.owner for f in declared} | {"NSObject"}):
        lines.append(f'extern objc_class {name}_class asm("._OBJC_CLASS_{name}");')
    for fact in declared:
        if fact.owner in by_hand:
            continue
        name = fact.owner
        lines.append(f"static objc_class {name}_metaclass = {{.name = \"{name}\", .info = 1}};")
        lines.append(f"objc_class {name}_class = {{.isa = &{name}_metaclass, .super = &{superclass(fact)}_class, .name = \"{name}\"}};")
        lines.append(f'objc_class* {name}_reference asm("._OBJC_REF_CLASS_{name}") = &{name}_class;')
    lines += ["", "namespace harbrook::running {", "", "const std::vector<objc_class*>& declaredClasses() {",
              "    static const std::vector<objc_class*> classes = {"]
    lines += [f"        &{f.owner}_class," for f in declared]
    lines += ["    };", "    return classes;", "}", "", "const std::vector<Signature>& declaredMessages() {",
              "    static const std::vector<Signature> messages = {"]
    for owner, selector, types, result, kind in root_signatures():
        lines.append(f'        {{"{owner}", "{selector}", "{types}", "{result}", Signature::Kind::{kind}, false}},')
    for fact in facts:
        desktop = "true" if fact.framework in ("AppKit", "WebKit") else "false"
        for owner, selector, types, result, kind in signatures(fact):
            lines.append(f'        {{"{owner}", "{selector}", "{types}", "{result}", Signature::Kind::{kind}, {desktop}}},')
    return "\n".join(lines + ["    };", "    return messages;", "}", "", "} // namespace harbrook::running", ""])


def constants_source(facts):
    lines = ["#import <WebKit/WebKit.h>", ""]
    for fact in facts:
        if fact.kind != "constant" or fact.framework not in ("Foundation", "AppKit", "WebKit"):
            continue
        if fact.declaration.startswith("NSString"):
            lines.append(f'NSString* const {fact.name} = @"{fact.name}";')
        elif fact.name in NUMBERS:
            lines.append(f"const CGFloat {fact.name} = {NUMBERS[fact.name]};")
    return "\n".join(lines + ["NSApplication* NSApp = nil;", ""])


def headers(folder, facts):
    for name in ("objc/objc.h", "dispatch/base.h"):
        sysroot.write(folder / name, (HERE.parent / "sysroot" / name).read_text())
    sysroot.write(folder / "dispatch/dispatch.h", sysroot.header("Dispatch", facts))
    for framework in sysroot.FRAMEWORKS:
        text = sysroot.header(framework, facts)
        # 64-bit whole numbers are `long` on Linux and `long long` on macOS: a boxed one becomes another message.
        text = re.sub(r"^(\+ \(NSNumber \*\)numberWith)LongLong:\(long long\)value;",
                      r"\g<0>\n\1Long:(long)value;", text, flags=re.M)
        sysroot.write(folder / framework / f"{framework}.h", text)


def main():
    folder = Path(sys.argv[1])
    facts = fact_table.load()
    headers(folder / "include", facts)
    sysroot.write(folder / "Classes.cpp", classes_source(facts))
    sysroot.write(folder / "Constants.mm", constants_source(facts))


if __name__ == "__main__":
    main()
