"""Looks at Harbrook.app: the property list, the program and the resources where the core looks for them.

usage: verify_bundle.py HARBROOK_APP
"""

import plistlib
import sys
from pathlib import Path

import program as mach_o

PROPERTIES = {
    "CFBundleIdentifier": "com.brackenforge.harbrook",
    "CFBundleExecutable": "Harbrook",
    "CFBundleName": "Harbrook",
    "CFBundlePackageType": "APPL",
    "NSHighResolutionCapable": True,
    "NSAppTransportSecurity": {"NSAllowsLocalNetworking": True},
    "NSPrincipalClass": "NSApplication",
}
# What the system shows to the user in our name.
TEXTS = (
    "CFBundleVersion", "CFBundleShortVersionString", "NSHumanReadableCopyright",
    "NSDesktopFolderUsageDescription", "NSDocumentsFolderUsageDescription", "NSDownloadsFolderUsageDescription",
)
RESOURCES = (
    "app/server.js", "app/manifest-worker.js", "app/package.json", "app/page/index.html", "app/third-party.txt",
    "menubarTemplate@2x.png", "menubarIdleTemplate@2x.png",
)


def main():
    contents = Path(sys.argv[1]) / "Contents"
    properties = plistlib.loads((contents / "Info.plist").read_bytes())
    problems = [f"{key} is {properties.get(key)!r}" for key, value in PROPERTIES.items() if properties.get(key) != value]
    problems += [f"{key} is empty" for key in TEXTS if not properties.get(key)]
    program = contents / "MacOS/Harbrook"
    architectures = set(mach_o.output("llvm-lipo-19", "-archs", program).split())
    if architectures != set(mach_o.ARCHITECTURES):
        problems.append(f"the program is for {' '.join(sorted(architectures))}")
    oldest = mach_o.read(program, "arm64").oldest_system
    if properties.get("LSMinimumSystemVersion") != oldest:
        problems.append(f"the property list and the program differ in the oldest system: {oldest}")
    problems += [f"no {name} in Resources" for name in RESOURCES if not (contents / "Resources" / name).exists()]
    print("\n".join(problems) if problems else "property list, program and resources are in place")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
