"""Reads the published API tables: the type declarations (*.d.ts) of @nativescript/macos-node-api.

They are generated from the platform's own interfaces. A selector appears there with its pieces joined in
camel case (`setFrame:display:` is `setFrameDisplay`), so two selectors that differ only in where the colons
stand are told apart by their number of parameters.
"""

import re
from dataclasses import dataclass, field
from pathlib import Path

FRAMEWORKS = ("Runtime", "CoreFoundation", "CoreGraphics", "Foundation", "AppKit", "WebKit", "Security")


@dataclass
class Member:
    parameters: list  # types; None for a property
    result: str
    is_readonly: bool = False
    is_optional: bool = False


@dataclass
class Type:
    bases: list = field(default_factory=list)
    protocols: list = field(default_factory=list)
    members: dict = field(default_factory=dict)  # "+name" or "-name" to a list of Member


@dataclass
class Published:
    classes: dict = field(default_factory=dict)
    protocols: dict = field(default_factory=dict)
    enumerations: dict = field(default_factory=dict)
    constants: dict = field(default_factory=dict)
    functions: dict = field(default_factory=dict)

    def ancestry(self, name):
        """The types whose members an instance of `name` has, nearest first."""
        seen, waiting = [], [name]
        while waiting:
            current = waiting.pop(0)
            for entry in (self.classes.get(current), self.protocols.get(current)):
                if entry is not None and not any(entry is s for s in seen):
                    seen.append(entry)
                    waiting += entry.bases + entry.protocols
        return seen

    def members(self, owner, key):
        return [m for entry in self.ancestry(owner) for m in entry.members.get(key, [])]

    def every_member_name(self):
        return {
            key[1:]
            for table in (self.classes, self.protocols)
            for entry in table.values()
            for key in entry.members
        }


def joined(selector):
    """`setFrame:display:` as the tables write it: `setFrameDisplay`."""
    first, *rest = selector.split(":")
    return first + "".join(piece[:1].upper() + piece[1:] for piece in rest)


def split_types(text):
    pieces, depth, piece, previous = [], 0, "", ""
    for character in text:
        if character in "([{<":
            depth += 1
        elif character in ")]}" or (character == ">" and previous != "="):
            depth -= 1
        if character == "," and depth == 0:
            pieces.append(piece.strip())
            piece = ""
        else:
            piece += character
        previous = character
    if piece.strip():
        pieces.append(piece.strip())
    return pieces


def without_type_parameters(text):
    """`<This extends new () => any>(this: This)` as `(this: This)`."""
    if not text.startswith("<"):
        return text
    depth = 0
    for end, character in enumerate(text):
        depth += (character == "<") - (character == ">" and text[end - 1] != "=")
        if depth == 0:
            return text[end + 1:]
    return text


def parse_parameters(text):
    """(parameter types, what follows the closing bracket) of a text that starts with `(`."""
    depth = 0
    for end, character in enumerate(text):
        depth += (character == "(") - (character == ")")
        if depth == 0:
            break
    types = []
    for parameter in split_types(text[1:end]):
        name, _, type_ = parameter.partition(":")
        if name.strip() != "this":
            types.append("..." if name.startswith("...") else type_.strip())
    return types, text[end + 1:].strip(" :;")


def names_only(text):
    return [re.sub(r"<.*", "", piece).strip() for piece in split_types(text or "")]


def parse_member(line, type_):
    sign = "-"
    if line.startswith("static "):
        sign, line = "+", line[len("static "):]
    readonly = line.startswith("readonly ")
    line = line.removeprefix("readonly ")
    accessor = re.match(r"(get|set) ([\w$]+)\(.*?\)(?:: (.*))?;$", line)
    if accessor:
        members = type_.members.setdefault(sign + accessor.group(2).rstrip("$"), [])
        if accessor.group(1) == "get":
            members.append(Member(None, accessor.group(3) or "", is_readonly=True))
        elif members:
            members[-1].is_readonly = False
        return
    method = re.match(r"([\w$]+)(\??)(?=[<(])", line)
    if method:
        parameters, result = parse_parameters(without_type_parameters(line[method.end():]))
        member = Member(parameters, result, is_optional=bool(method.group(2)))
        type_.members.setdefault(sign + method.group(1).rstrip("$"), []).append(member)
        return
    field_ = re.match(r"([\w$]+)(\??): (.*);$", line)
    if field_:
        member = Member(None, field_.group(3), is_readonly=readonly, is_optional=bool(field_.group(2)))
        type_.members.setdefault(sign + field_.group(1).rstrip("$"), []).append(member)


TYPE_HEAD = re.compile(
    r"declare (class|interface) (\w+)(?:<.*?>)?(?: extends ([^{]*?))?(?: implements ([^{]*?))? \{(\})?$")


def parse_file(text, published):
    lines = iter(text.splitlines())
    for line in lines:
        head = TYPE_HEAD.match(line)
        if head:
            kind, name, bases, protocols, is_empty = head.groups()
            if kind == "class" and bases == "NativeObject" and name in published.protocols:
                continue  # the object that stands for a protocol at run time
            table = published.classes if kind == "class" else published.protocols
            type_ = table.setdefault(name, Type())
            type_.bases += [b for b in names_only(bases) if b not in ("NativeObject", *type_.bases)]
            type_.protocols += [p for p in names_only(protocols) if p not in type_.protocols]
            if is_empty:
                continue
            for member in lines:
                if member == "}":
                    break
                if member.startswith("  ") and not member.lstrip().startswith(("//", "/*", "*")):
                    parse_member(member.strip(), type_)
            continue
        enumeration = re.match(r"declare const (\w+): \{$", line)
        if enumeration:
            values = published.enumerations.setdefault(enumeration.group(1), {})
            for value in lines:
                if value.startswith("}"):
                    break
                entry = re.match(r"\s*(\w+): (-?[\d.e+]+)n?,", value)
                if entry:
                    values[entry.group(1)] = int(float(entry.group(2)))
            continue
        constant = re.match(r"declare const (\w+): (.*);$", line)
        if constant:
            published.constants[constant.group(1)] = constant.group(2)
            continue
        function = re.match(r"declare function (\w+)\(", line)
        if function:
            published.functions[function.group(1)] = parse_parameters(line[function.end() - 1:])


def load(directory):
    published = Published()
    for framework in FRAMEWORKS:
        parse_file((Path(directory) / f"{framework}.d.ts").read_text(), published)
    return published
