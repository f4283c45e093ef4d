"""Looks at an installed Harbrook.app: it must run where neither the build folder nor Homebrew is.

usage: verify_installed.py HARBROOK_APP SIGNED BUILD_FOLDER
"""

import hashlib
import plistlib
import re
import sys
from pathlib import Path

import program as mach_o

OF_THE_SYSTEM = ("/usr/lib/", "/System/Library/")


def version(text):
    return tuple(map(int, text.split(".")))


def load_commands(code):
    return "".join(mach_o.output("llvm-otool-19", "-arch", a, "-l", code) for a in mach_o.ARCHITECTURES)


def check_references(code):
    commands = load_commands(code)
    names = re.findall(r"cmd LC_(?:LOAD|ID)_DYLIB\n.*\n +name (\S+)", commands)
    problems = [f"{code.name} refers to {n}" for n in sorted(set(names))
                if not n.startswith(OF_THE_SYSTEM)]
    return problems + [f"{code.name} searches {p}" for p in re.findall(r"cmd LC_RPATH\n.*\n +path (\S+)", commands)]


def check_paths(application, build_folder):
    files = [f for f in application.rglob("*") if f.is_file()]
    return [f"{f.relative_to(application)} holds the path of the build" for f in files
            if str(build_folder).encode() in f.read_bytes()]


def check_signature(program, signed):
    """The program was signed in the state it is in now, last of all, and the signatures were looked at."""
    log = [line.split("\t") for line in signed.read_text().splitlines()]
    last = {path: digest for verb, _, path, digest in log if verb == "sign"}
    problems = []
    if last.get(str(program)) != hashlib.sha256(program.read_bytes()).hexdigest():
        problems.append(f"{program.name} was not signed after it was changed")
    order = [path for verb, _, path, _ in log if verb == "sign"]
    if not order or "/MacOS/" not in order[-1]:
        problems.append("the bundle was not signed last")
    if log and log[-1][0] != "verify":
        problems.append("the signatures were not looked at")
    return problems + [f"{path} is signed by {identity}" for verb, identity, path, _ in log
                       if verb == "sign" and identity != "-"]


def check_oldest_system(application, program):
    needed = max(re.findall(r"minos (\S+)", load_commands(program)), key=version)
    stated = plistlib.loads((application / "Contents/Info.plist").read_bytes())["LSMinimumSystemVersion"]
    return [] if stated == needed else [f"the bundle asks for macOS {stated}; its code needs {needed}"]


def main():
    application, signed, build_folder = map(Path, sys.argv[1:])
    program = application / "Contents/MacOS/Harbrook"
    problems = check_references(program) + check_paths(application, build_folder)
    problems += check_signature(program, signed) + check_oldest_system(application, program)
    print("\n".join(problems) if problems else "it needs the system only, nothing points to this machine, it is signed")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
