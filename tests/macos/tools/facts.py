"""Reads api-facts.tsv: every operation of the platform that the macOS side may use, one a line.

A line holds the declaration itself, in Objective-C, so that what the compiler sees and what is held
against the published tables is the same text.
"""

import re
from dataclasses import dataclass, field
from pathlib import Path

TABLE = Path(__file__).resolve().parent.parent / "api-facts.tsv"

KINDS = {
    "class", "protocol", "method", "property", "required callback", "optional callback",
    "enumeration", "options", "value", "number", "constant", "function",
}


@dataclass
class Method:
    """One selector with the types at its border."""

    is_class_method: bool
    selector: str
    result: str
    parameters: list


@dataclass
class Property:
    name: str
    type: str
    is_class_property: bool = False
    is_readonly: bool = False
    getter: str = ""
    setter: str = ""


@dataclass
class Fact:
    framework: str
    owner: str
    kind: str
    declaration: str
    since: str
    sources: str
    line: int
    parsed: object = field(default=None)

    @property
    def name(self):
        """The identifier of a constant, a function, a number or an enumeration value."""
        if self.kind in ("number", "value"):
            return re.search(r"(\w+) = ", self.declaration).group(1)
        if self.kind == "function":
            return re.search(r"(\w+)\(", self.declaration).group(1)
        if self.kind == "constant":
            return re.search(r"(\w+)$", self.declaration).group(1)
        return self.owner

    @property
    def value(self):
        return self.declaration.split(" = ")[1]


def split_outside_brackets(text, separator=","):
    """Splits at separators that no bracket encloses."""
    pieces, depth, piece = [], 0, ""
    for character in text:
        depth += (character in "([{<") - (character in ")]}>")
        if character == separator and depth == 0:
            pieces.append(piece.strip())
            piece = ""
        else:
            piece += character
    if piece.strip():
        pieces.append(piece.strip())
    return pieces


def closing_bracket(text, start):
    depth = 0
    for position in range(start, len(text)):
        depth += (text[position] in "(") - (text[position] in ")")
        if depth == 0:
            return position
    raise ValueError(f"no closing bracket in {text!r}")


def parse_method(declaration):
    rest = declaration[1:].strip()
    end = closing_bracket(rest, 0)
    result, rest = rest[1:end], rest[end + 1:].strip()
    parameters, selector = [], ""
    while True:
        piece = re.match(r"(\w+):\s*\(", rest)
        if not piece:
            break
        start = piece.end() - 1
        end = closing_bracket(rest, start)
        selector += piece.group(1) + ":"
        parameters.append(rest[start + 1:end])
        rest = re.sub(r"^\s*\w+\s*", "", rest[end + 1:])
    if not selector:
        selector = rest
    elif rest.startswith(", ..."):
        parameters.append("...")
    return Method(declaration[0] == "+", selector, result, parameters)


def parse_property(declaration):
    attributes, text = [], declaration
    if declaration.startswith("("):
        end = closing_bracket(declaration, 0)
        attributes = [a.strip() for a in declaration[1:end].split(",")]
        text = declaration[end + 1:].strip()
    block = re.search(r"\(\^(\w+)\)", text)
    if block:
        name, type_ = block.group(1), text.replace(block.group(0), "(^)")
    else:
        name = re.search(r"(\w+)$", text).group(1)
        type_ = text[: -len(name)].strip()
    getter = next((a[7:] for a in attributes if a.startswith("getter=")), name)
    readonly = "readonly" in attributes
    setter = "" if readonly else f"set{name[0].upper()}{name[1:]}:"
    return Property(name, type_, "class" in attributes, readonly, getter, setter)


def load(path=TABLE):
    facts = []
    for number, line in enumerate(Path(path).read_text().splitlines(), start=1):
        if number == 1 or not line or line.startswith("#"):
            continue
        columns = line.split("\t")
        if len(columns) != 6 or columns[2] not in KINDS:
            raise SystemExit(f"{path}:{number}: not a line of the table: {line}")
        fact = Fact(*columns, number)
        if fact.kind in ("method", "required callback", "optional callback"):
            fact.parsed = parse_method(fact.declaration)
        elif fact.kind == "property":
            fact.parsed = parse_property(fact.declaration)
        facts.append(fact)
    return facts


def selectors_of(fact):
    """The selectors that a method, a callback or a property stands for."""
    if isinstance(fact.parsed, Method):
        return [fact.parsed.selector]
    if isinstance(fact.parsed, Property):
        return [s for s in (fact.parsed.getter, fact.parsed.setter) if s]
    return []
