"""Reads a linked Mach-O program with LLVM's tools: what it loads, imports, sends and defines."""

import re
import subprocess
from dataclasses import dataclass, field

ARCHITECTURES = ("arm64", "x86_64")


@dataclass
class OwnClass:
    superclass: str
    protocols: list = field(default_factory=list)
    methods: list = field(default_factory=list)  # "-selector" or "+selector"


@dataclass
class Program:
    libraries: list
    oldest_system: str
    imported_classes: list
    imported_constants: list
    selectors: list
    classes: dict


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def read_classes(path, architecture):
    classes, current, in_protocols = {}, None, False
    listing = output("llvm-objdump-19", "--macho", f"--arch={architecture}", "--objc-meta-data", path)
    # The lists that follow are of classes that are only referred to.
    own_classes = re.search(r"__objc_classlist\) section\n(.*?)(?=^Contents of|\Z)", listing, re.S | re.M)
    for line in own_classes.group(1).splitlines():
        head = re.match(r"[0-9a-f]+ 0x[0-9a-f]+ _OBJC_CLASS_\$_(\w+)", line)
        superclass = re.match(r" +superclass 0x[0-9a-f]+ _OBJC_CLASS_\$_(\w+)", line)
        method = re.search(r"imp ([-+])\[(\w+) (\S+)\]", line)
        protocol = re.match(r"\s+name 0x[0-9a-f]+ (\w+)$", line)
        if head:
            current = head.group(1)
            classes[current] = OwnClass("")
            in_protocols = False
        elif superclass and current and not classes[current].superclass:
            classes[current].superclass = superclass.group(1)
        elif method and method.group(2) in classes:
            classes[method.group(2)].methods.append(method.group(1) + method.group(3))
        elif "baseProtocols" in line:
            in_protocols = True
        elif line.strip().startswith(("ivars", "Meta Class")):
            in_protocols = False
        elif protocol and in_protocols and current and protocol.group(1) not in classes[current].protocols:
            classes[current].protocols.append(protocol.group(1))
    return classes


def read(path, architecture):
    commands = output("llvm-otool-19", "-arch", architecture, "-l", path)
    undefined = output("llvm-nm-19", f"--arch={architecture}", "-u", "-j", path).split()
    references = output(
        "llvm-objdump-19", "--macho", f"--arch={architecture}", "--section=__DATA,__objc_selrefs", path)
    return Program(
        libraries=sorted(re.findall(r"LC_LOAD_DYLIB\n.*\n +name (?:\S*(?=/usr/local/))?(\S+)", commands)),
        oldest_system=re.search(r"minos (\S+)", commands).group(1),
        imported_classes=sorted({n.partition("$_")[2] for n in undefined if "_OBJC_CLASS_$_" in n}),
        imported_constants=sorted({n[1:] for n in undefined if re.match(r"_(NS|WK|kSec)[A-Z]?\w+$", n)}),
        selectors=sorted(set(re.findall(r"__objc_methname:(\S+)", references))),
        classes=read_classes(path, architecture))


def describe(program):
    """One line a fact, so that a change shows as a line."""
    lines = [f"oldest system {program.oldest_system}"]
    lines += [f"loads {name}" for name in program.libraries]
    lines += [f"uses class {name}" for name in program.imported_classes]
    lines += [f"uses {name}" for name in program.imported_constants]
    lines += [f"sends {name}" for name in program.selectors]
    for name, own in sorted(program.classes.items()):
        lines.append(f"defines {name} : {own.superclass} <{', '.join(own.protocols)}>")
        lines += [f"defines {method[0]}[{name} {method[1:]}]" for method in sorted(own.methods)]
    return "\n".join(lines) + "\n"
