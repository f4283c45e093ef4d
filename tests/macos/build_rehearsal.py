"""How the commands configure and check on macOS, with stand-ins for what they call."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

CMAKE = """#!/bin/sh
echo "$*" >>"$NOTES"
[ "$1" = --preset ] || exit 0
mkdir -p "build/$2"
touch "build/$2/build.ninja"
echo "${3#-D}" | sed 's/=/:UNINITIALIZED=/' >"build/$2/CMakeCache.txt"
"""
COMMAND = """#!/usr/bin/env bash
source "$(dirname "$0")/lib/common.bash"
warnings_as_errors=$1
build release
"""
LOOSE, STRICT = (["--preset release -DCMAKE_COMPILE_WARNING_AS_ERROR=" + flag] for flag in ("OFF", "ON"))
BUILD = ["--build build/release"]


class Rehearsal(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.notes = self.folder / "notes"
        (self.folder / "script").mkdir()
        shutil.copytree(ROOT / "script/lib", self.folder / "script/lib", dirs_exist_ok=True)
        for version in ("76", "77"):
            (self.folder / version).mkdir()
        self.icu = self.folder / "icu4c"
        self.icu.symlink_to("76")
        self.write("script/command", COMMAND)
        self.write("bin/cmake", CMAKE)
        self.write("bin/uname", "#!/bin/sh\necho Darwin\n")
        self.write("bin/brew", f"#!/bin/sh\necho {self.icu}\n")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(0o755)

    def run_with(self, *command, **options):
        environment = os.environ | {"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "NOTES": str(self.notes)}
        return subprocess.run(command, env=environment, capture_output=True, text=True, **options)

    def called(self, warnings_as_errors):
        """What CMake was told by a command that has warnings for errors, or has not."""
        self.notes.write_text("")
        self.run_with(self.folder / "script/command", warnings_as_errors, check=True)
        return self.notes.read_text().splitlines()

    def test_a_folder_is_configured_once_and_stays(self):
        self.assertEqual(self.called("OFF"), LOOSE + BUILD)
        self.assertEqual(self.called("OFF"), BUILD)

    def test_the_tests_have_warnings_for_errors_and_others_leave_that_alone(self):
        self.called("OFF")
        self.assertEqual(self.called("ON"), STRICT + BUILD)
        self.assertEqual(self.called("ON"), BUILD)
        self.assertEqual(self.called("OFF"), BUILD)

    def test_another_icu_makes_the_folder_anew(self):
        self.called("OFF")
        old = self.folder / "build/release/old"
        old.touch()
        self.icu.unlink()
        self.icu.symlink_to("77")
        self.assertEqual(self.called("OFF"), LOOSE + BUILD)
        self.assertFalse(old.exists())
        self.assertEqual(self.called("OFF"), BUILD)

    def test_another_clang_format_is_said_and_not_asked(self):
        format_command = self.folder / "script/format"
        shutil.copy(ROOT / "script/format", format_command)
        subprocess.run(["git", "init", "--quiet", self.folder], check=True)
        self.write("source.cpp", "")
        # What the dashboard is laid out with.
        self.write("bin/npm", "#!/bin/sh\n")
        self.write("dashboard/package-lock.json", "")
        self.write("dashboard/node_modules/.fetched", "")
        asked = {}
        for version in ("Homebrew clang-format version 19.1.7", "Debian clang-format version 14.0.6"):
            self.notes.write_text("")
            self.write("bin/clang-format", f'#!/bin/sh\n[ "$1" = --version ] && echo {version} || echo "$*" >>"$NOTES"\n')
            said = self.run_with(format_command, "--check", check=True).stderr
            asked[version.split()[-1]] = (said, self.notes.read_text())
        self.assertEqual(asked, {
            "19.1.7": ("format: C++ is left out: it needs clang-format 14, and here it is 19\n", ""),
            "14.0.6": ("", "--dry-run -Werror source.cpp\n"),
        })


if __name__ == "__main__":
    unittest.main()
