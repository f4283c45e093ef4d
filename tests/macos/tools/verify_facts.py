"""Holds every line of api-facts.tsv against the published API tables: that the class, selector, property,
constant or function exists, that its types are the published ones, and that a value is the published value.

usage: verify_facts.py PUBLISHED_DIRECTORY [TABLE]
"""

import re
import sys

import facts as fact_table
import published as published_tables
from facts import Property, split_outside_brackets

NUMBER_TYPES = {
    "NSInteger", "NSUInteger", "CGFloat", "NSTimeInterval", "double", "float", "int", "unsigned", "char",
    "long", "size_t", "int32_t", "uint32_t", "int64_t", "uint64_t", "intptr_t", "uintptr_t",
    "dispatch_time_t", "OSStatus", "long long", "unsigned long long",
}
OBJECTS = ("interop.Object", "ObjectType", "KeyType")
STRUCTURES = {"NSRect": "CGRect", "NSPoint": "CGPoint", "NSSize": "CGSize", "NSRange": "_NSRange"}
C_STRUCTURES = {"NSFastEnumerationState"}
# Where the values of an enumeration are not called by its own name: what stands before and after.
COMMON_PARTS = {
    "NSWindowTitleVisibility": ("NSWindowTitle", ""),
    "NSBackingStoreType": ("NSBackingStore", ""),
    "NSWindowButton": ("NSWindow", "Button"),
    "NSEventModifierFlags": ("NSEventModifierFlag", ""),
    "NSAutoresizingMaskOptions": ("NSView", ""),
    "NSCellImagePosition": ("NS", ""),
    "NSURLRequestCachePolicy": ("NSURLRequest", ""),
    "NSApplicationActivationOptions": ("NSApplicationActivate", ""),
    "NSApplicationTerminateReply": ("NSTerminate", ""),
    "NSActivityOptions": ("NSActivity", ""),
    "NSKeyValueObservingOptions": ("NSKeyValueObservingOption", ""),
    "NSSearchPathDirectory": ("NS", "Directory"),
    "NSSearchPathDomainMask": ("NS", "Mask"),
    "NSJSONReadingOptions": ("NSJSONReading", ""),
    "NSJSONWritingOptions": ("NSJSONWriting", ""),
    "NSLayoutRelation": ("NSLayoutRelation", "Equal"),
    "NSWindowOrderingMode": ("NSWindow", ""),
    "WKUserScriptInjectionTime": ("WKUserScriptInjectionTimeAtDocument", ""),
}
QUALIFIERS = re.compile(
    r"\b(_Nullable|_Nonnull|_Null_unspecified|__kindof|__unsafe_unretained|const|readonly)\b")


class Verifier:
    def __init__(self, published, facts):
        self.published = published
        self.facts = facts
        self.enumerations = {f.owner for f in facts if f.kind in ("enumeration", "options")}
        self.problems = []

    def report(self, fact, problem):
        self.problems.append(f"api-facts.tsv:{fact.line}: {fact.owner} {fact.declaration}: {problem}")

    # Types

    def same_type(self, ours, theirs):
        """Whether an Objective-C type of ours is what the tables write as `theirs`."""
        ours = QUALIFIERS.sub("", ours).strip()
        theirs = theirs.strip().removesuffix(" | null")
        if theirs in OBJECTS or ours in ("instancetype", "id"):
            return self.is_object(ours) and self.is_object_of_theirs(theirs)
        if "(^" in ours or "(*" in ours:
            return self.same_function_type(ours, theirs)
        if ours == "void":
            return theirs == "void"
        if ours == "BOOL":
            return theirs == "boolean"
        if ours == "SEL":
            return theirs == "string"
        if ours == "Class" or ours.startswith("Class<"):
            return theirs == "interop.Object"
        if ours in STRUCTURES:
            return theirs == STRUCTURES[ours]
        if ours in self.enumerations:
            return theirs == f"interop.Enum<typeof {ours}>"
        if ours == "NSModalResponse" or ours in NUMBER_TYPES:
            return theirs == "number"
        if ours in ("NSString *", "char *"):
            return theirs == "string"
        if ours.startswith("dispatch_"):
            return theirs == ("() => void" if ours == "dispatch_block_t" else "NSObject")
        protocol = re.match(r"id<(\w+)>$", ours)
        if protocol:
            return theirs in (protocol.group(1), "interop.Object")
        pointer = re.match(r"(\w+) ?\*$", ours)
        if pointer and pointer.group(1) in self.published.classes and pointer.group(1) not in C_STRUCTURES:
            return self.same_class(pointer.group(1), theirs)
        if ours.endswith("*") or ours.endswith("* *"):
            return theirs.startswith("interop.Pointer")
        return False

    @staticmethod
    def is_object(ours):
        return ours in ("id", "instancetype", "Class") or ours.endswith("*") or ours.startswith("id<")

    @staticmethod
    def is_object_of_theirs(theirs):
        return not theirs.startswith(("interop.Pointer", "interop.Enum", "(")) and theirs not in (
            "void", "boolean", "number")

    @staticmethod
    def same_class(name, theirs):
        alternatives = [re.sub(r"<.*", "", t).strip() for t in theirs.split(" | ")]
        bridged = {"NSArray": "Array", "NSDictionary": "Record", "NSDate": "Date", "NSData": "Uint8Array"}
        return name in alternatives or bridged.get(name) in alternatives or alternatives == ["this"]

    def same_function_type(self, ours, theirs):
        published = re.match(r"\((.*)\) => (.*)$", theirs, re.S)
        own = re.match(r"(.*?)\([\^*]\s*\w*\)\((.*)\)$", ours, re.S)
        if not published or not own:
            return False
        their_types = [t.partition(":")[2].strip() for t in published_tables.split_types(published.group(1))]
        our_types = [re.sub(r"(?<=[\s*])\w+$", "", t).strip() if re.match(r".*[\s*]\w+$", t) and t not in NUMBER_TYPES
                     else t for t in split_outside_brackets(own.group(2)) if t != "void"]
        return (len(our_types) == len(their_types)
                and all(self.same_type(o, t) for o, t in zip(our_types, their_types))
                and self.same_type(own.group(1), published.group(2)))

    def signature_matches(self, method, member):
        if member.parameters is None:
            return not method.parameters and self.same_type(method.result, member.result)
        return (len(method.parameters) == len(member.parameters)
                and all(o == t == "..." or self.same_type(o, t)
                        for o, t in zip(method.parameters, member.parameters))
                and self.same_type(method.result, member.result))

    # Lines

    def check_type(self, fact):
        table = self.published.classes if fact.kind == "class" else self.published.protocols
        name = f"{fact.owner}Protocol" if fact.kind == "protocol" and fact.owner == "NSObject" else fact.owner
        if name not in table:
            return self.report(fact, f"no such {fact.kind}")
        base = re.match(r"\w+ : (\w+)", fact.declaration)
        if base and self.published.classes.get(base.group(1)) not in self.published.ancestry(name):
            self.report(fact, f"does not inherit from {base.group(1)}")
        for protocol in re.findall(r"<(.*)>", fact.declaration):
            for each in (p.strip() for p in protocol.split(",")):
                known = "NSObjectProtocol" if each == "NSObject" else each
                if self.published.protocols.get(known) not in self.published.ancestry(name):
                    self.report(fact, f"does not adopt {each}")

    def check_method(self, fact):
        method = fact.parsed
        key = ("+" if method.is_class_method else "-") + published_tables.joined(method.selector)
        members = self.published.members(fact.owner, key)
        if not members:
            return self.report(fact, "no such method")
        if not any(self.signature_matches(method, member) for member in members):
            found = "; ".join(f"({', '.join(m.parameters or [])}) {m.result}" for m in members)
            return self.report(fact, f"published with other types: {found}")
        if fact.kind.endswith("callback"):
            optional = fact.kind.startswith("optional")
            if all(member.is_optional != optional for member in members):
                self.report(fact, "optional in one table and required in the other")

    def check_property(self, fact):
        property_: Property = fact.parsed
        sign = "+" if property_.is_class_property else "-"
        members = self.published.members(fact.owner, sign + property_.name)
        if not members:
            return self.report(fact, "no such property")
        if not any(self.same_type(property_.type, member.result) for member in members):
            return self.report(fact, f"published with another type: {members[0].result}")
        if not property_.is_readonly and all(member.is_readonly for member in members):
            self.report(fact, "is read-only")
        if property_.getter != property_.name and not self.published.members(
                fact.owner, sign + property_.getter):
            self.report(fact, f"no getter {property_.getter}")

    def check_enumeration(self, fact):
        if fact.owner not in self.published.enumerations:
            self.report(fact, "no such enumeration")

    def check_value(self, fact):
        """The tables leave out what the names of an enumeration's values have in common."""
        prefix, suffix = COMMON_PARTS.get(fact.owner, (fact.owner, ""))
        values = self.published.enumerations.get(fact.owner, {})
        short = fact.name.removeprefix(prefix).removesuffix(suffix)
        if fact.name in values:  # one that would otherwise have no name left
            prefix, short, suffix = "", fact.name, ""
        if prefix + short + suffix != fact.name or short not in values:
            self.report(fact, "no such value")
        elif values[short] != int(fact.value):
            self.report(fact, f"published as {values[short]}")

    def check_constant(self, fact):
        theirs = self.published.constants.get(fact.name)
        if theirs is None:
            return self.report(fact, "no such constant")
        ours = fact.declaration[: -len(fact.name)].replace("*const", "* const")
        if not self.same_type(ours, theirs):
            self.report(fact, f"published with another type: {theirs}")

    def check_function(self, fact):
        published = self.published.functions.get(fact.name)
        if published is None:
            return self.report(fact, "no such function")
        result, _, rest = fact.declaration.partition(f"{fact.name}(")
        parameters = [self.type_only(p) for p in split_outside_brackets(rest[:-1]) if p != "void"]
        types, published_result = published
        if len(parameters) != len(types) or not all(map(self.same_type, parameters, types)):
            return self.report(fact, f"published with other parameters: {', '.join(types)}")
        if not self.same_type(result, published_result):
            self.report(fact, f"published with another result: {published_result}")

    @staticmethod
    def type_only(parameter):
        if "(*" in parameter or "(^" in parameter:
            return re.sub(r"\(([*^])\w*\)", r"(\1)", parameter)
        return re.sub(r"(?<=[\s*])\w+$", "", parameter).strip()

    def run(self):
        checks = {
            "class": self.check_type, "protocol": self.check_type, "method": self.check_method,
            "required callback": self.check_method, "optional callback": self.check_method,
            "property": self.check_property, "enumeration": self.check_enumeration,
            "options": self.check_enumeration, "value": self.check_value, "number": self.check_constant_number,
            "constant": self.check_constant, "function": self.check_function,
        }
        for fact in self.facts:
            checks[fact.kind](fact)
        return self.problems

    def check_constant_number(self, fact):
        if self.published.constants.get(fact.name) != "number":
            self.report(fact, "no such number")


def main():
    facts = fact_table.load(*sys.argv[2:3])
    problems = Verifier(published_tables.load(sys.argv[1]), facts).run()
    print("\n".join(problems) if problems else f"{len(facts)} lines agree with the published tables")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
