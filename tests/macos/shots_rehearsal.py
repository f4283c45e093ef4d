"""The picture tool as it works on macOS, with stand-ins for the program and for the platform's commands."""

import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

# What the platform's script language is given, run with objects that note what they are sent.
OSASCRIPT = """#!/usr/bin/env node
const [language, name, option, source, ...given] = process.argv.slice(2);
if (`${language} ${name} ${option}` !== "-l JavaScript -e") throw new Error("other arguments");
const posted = (...sent) => require("fs").writeFileSync(`${process.env.NOTES}/request`, JSON.stringify(sent));
const $ = Object.assign((value) => ({ object: value ?? null }), {
    NSDistributedNotificationCenter: {
        defaultCenter: { postNotificationNameObjectUserInfoDeliverImmediately: posted },
    },
});
new Function("ObjC", "$", "given", source + "; if (typeof run === 'function') run(given);")({ import() {} }, $, given);
"""
SCREENCAPTURE = '#!/bin/sh\nfor last; do :; done\necho "$*" >"$last"\n'
PROGRAM = """#!/usr/bin/env python3
import json, os, sys, time
from pathlib import Path
data, request = Path(os.environ["HARBROOK_SHOTS_HOME"]) / ".harbrook", Path(os.environ["NOTES"]) / "request"
(data / "shot-window").write_text("4711")
Path(os.environ["NOTES"], "arguments").open("a").write(" ".join(sys.argv[1:]) + "\\n")
while True:
    if request.exists() and (text := request.read_text()).endswith("]"):
        request.unlink()
        Path(os.environ["NOTES"], "requests").open("a").write(text + "\\n")
        (data / "shot-ready").write_text(json.loads(text)[2]["object"]["token"])
    time.sleep(0.01)
"""
TOOL = "import runpy, sys; sys.platform = 'darwin'; runpy.run_module('shots', run_name='__main__', alter_sys=True)"


class Rehearsal(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for name, text in (("osascript", OSASCRIPT), ("screencapture", SCREENCAPTURE), ("program", PROGRAM)):
            (self.folder / name).write_text(text)
            (self.folder / name).chmod(0o755)
        self.environment = os.environ | {
            "PATH": f"{self.folder}:{os.environ['PATH']}", "NOTES": str(self.folder), "DISPLAY": "",
            "PYTHONPATH": f"{ROOT}/script/lib:{ROOT}/tests", "PYTHONDONTWRITEBYTECODE": "1",
        }

    def requests(self):
        return [json.loads(line) for line in (self.folder / "requests").read_text().splitlines()]

    def test_pictures_are_asked_for_at_once_and_taken_by_the_windows_number(self):
        views = {"pictures": [{"name": "ports", "view": "#/ports", "click": "#more"}]}
        (self.folder / "list.json").write_text(json.dumps(views))
        subprocess.run(
            [sys.executable, "-c", TOOL, self.folder / "list.json", "--program", self.folder / "program"],
            check=True, env=self.environment, cwd=ROOT, timeout=120)
        for look in ("light", "dark"):
            picture = self.folder / f"pictures/ports-{look}.png"
            self.assertEqual(picture.read_text(), f"-x -l4711 {picture}\n")
        self.assertEqual((self.folder / "arguments").read_text().splitlines(),
                         ["-NSRequiresAquaSystemAppearance YES", "-AppleInterfaceStyle Dark"])
        sent = self.requests()
        self.assertEqual([r[2]["object"]["hash"] for r in sent], ["#/", "#/ports"] * 2)
        self.assertEqual(sent[1][2]["object"]["click"], "#more")
        for name, sender, _, at_once in sent:
            self.assertEqual((name, sender, at_once), ("com.brackenforge.harbrook.shot", {"object": None}, True))

    def test_the_line_in_the_document_posts_a_request_that_is_delivered_at_once(self):
        text = (ROOT / "docs/screenshots.md").read_text()
        line = next(l.strip() for l in text.splitlines() if l.strip().startswith("osascript "))
        subprocess.run(["sh", "-c", line], check=True, env=self.environment)
        name, sender, information, at_once = json.loads((self.folder / "request").read_text())
        self.assertEqual((name, sender, at_once), ("com.brackenforge.harbrook.shot", {"object": None}, True))
        self.assertEqual(information, {"object": {"hash": "#/ports", "token": "ports 1"}})


if __name__ == "__main__":
    unittest.main()
