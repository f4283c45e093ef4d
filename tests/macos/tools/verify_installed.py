"""Looks at an installed Harbrook.app: it must run where neither the build folder nor Homebrew is.

usage: verify_installed.py HARBROOK_APP SIGNED BUILD_FOLDER
"""

import hashlib
import os
import plistlib
import re
import sys
from pathlib import Path

import program as mach_o

OF_THE_SYSTEM = ("/usr/lib/", "/System/Library/")
BESIDE_THE_PROGRAM = "@executable_path/../Frameworks/"


def version(text):
    return tuple(map(int, text.split(".")))


def load_commands(code):
    return "".join(mach_o.output("llvm-otool-19", "-arch", a, "-l", code) for a in mach_o.ARCHITECTURES)


def check_references(code):
    commands = load_commands(code)
    names = re.findall(r"cmd LC_(?:LOAD|ID)_DYLIB\n.*\n +name (\S+)", commands)
    problems = [f"{code.name} refers to {n}" for n in sorted(set(names))
                if not n.startswith((*OF_THE_SYSTEM, BESIDE_THE_PROGRAM))]
    return problems + [f"{code.name} searches {p}" for p in re.findall(r"cmd LC_RPATH\n.*\n +path (\S+)", commands)]


def check_paths(application, build_folder):
    files = [f for f in application.rglob("*") if f.is_file()]
    return [f"{f.relative_to(application)} holds the path of the build" for f in files
            if str(build_folder).encode() in f.read_bytes()]


def check_signatures(codes, signed):
    """Everything was signed in the state it is in now, the program after what is beside it, and looked at."""
    log = [line.split("\t") for line in signed.read_text().splitlines()]
    last = {path: digest for verb, _, path, digest in log if verb == "sign"}
    problems = [f"{c.name} was not signed after it was changed" for c in codes
                if last.get(str(c)) != hashlib.sha256(c.read_bytes()).hexdigest()]
    order = [path for verb, _, path, _ in log if verb == "sign"]
    if not order or "/MacOS/" not in order[-1]:
        problems.append("the bundle was not signed last")
    if log and log[-1][0] != "verify":
        problems.append("the signatures were not looked at")
    return problems + [f"{path} is signed by {identity}" for verb, identity, path, _ in log
                       if verb == "sign" and identity != "-"]


def check_oldest_system(application, codes):
    needed = max((m for c in codes for m in re.findall(r"minos (\S+)", load_commands(c))), key=version)
    stated = plistlib.loads((application / "Contents/Info.plist").read_bytes())["LSMinimumSystemVersion"]
    return [] if stated == needed else [f"the bundle asks for macOS {stated}; its code needs {needed}"]


def main():
    application, signed, build_folder = map(Path, sys.argv[1:])
    libraries = sorted((application / "Contents/Frameworks").glob("*.dylib"))
    codes = [application / "Contents/MacOS/Harbrook", *libraries]
    problems = [] if libraries else ["no library came along"]
    for code in codes:
        problems += check_references(code)
        if not os.stat(code).st_mode & 0o200:
            problems.append(f"{code.name} cannot be written to")
    problems += check_paths(application, build_folder)
    problems += check_signatures(codes, signed)
    problems += check_oldest_system(application, codes)
    print("\n".join(problems) if problems else
          f"{len(libraries)} libraries came along; nothing points to this machine, and all is signed")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
