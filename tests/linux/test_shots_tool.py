"""script/shots: the tool that drives screenshot mode."""

import json
import os
import signal
import struct
import subprocess
import zlib

import pytest

from harness.page import page
from harness.processes import end_marked, marked
from harness.server import Plan
from harness.shell import REPOSITORY
from harness.waiting import wait_until

MARK = "HARBROOK_TEST_SHOTS"

PAGE = page('<div id="page">{}</div>'.format("A page with more than fifty characters to read. " * 3))
NEVER_READY = page('<div id="page">Too short.</div>')


@pytest.fixture
def shots(make_shell, tmp_path):
    """Starts the tool with a list of pictures and a program with a scripted server; gives the process."""

    def start(pictures, *options, body=PAGE, program=None):
        shell = make_shell(Plan(answers={"/": {"body": body}}))
        (tmp_path / "list.json").write_text(json.dumps({"pictures": pictures}))
        environment = {
            "PATH": os.environ["PATH"],
            MARK: str(tmp_path),
            # The scripted server speaks to this test by a socket that would be out of sight.
            "HARBROOK_SHOTS_INSIDE": "1",
        }
        # In the background of a shell, where these tests may run, interrupts are ignored.
        listening = ["env", "--default-signal=INT"]
        command = [*listening, REPOSITORY / "script" / "shots", "--program", program or shell.executable, *options]
        return subprocess.Popen(
            [*command, tmp_path / "list.json"], env=environment, stderr=subprocess.PIPE, text=True
        )

    yield start
    leftovers = marked(MARK, str(tmp_path))
    end_marked(MARK, str(tmp_path))
    assert not leftovers


def finish(tool):
    _, said = tool.communicate(timeout=80)
    return tool.returncode, said


def size(path):
    data = path.read_bytes()
    assert data.startswith(b"\x89PNG\r\n\x1a\n")
    return struct.unpack(">II", data[16:24])


def has_more_than_one_colour(path):
    data = path.read_bytes()
    pixels, at = b"", 8
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at : at + 8])
        if kind == b"IDAT":
            pixels += data[at + 8 : at + 8 + length]
        at += 12 + length
    return len(set(zlib.decompress(pixels))) > 16


def test_a_picture_is_taken_of_each_appearance_and_scale(shots, tmp_path):
    status, said = finish(shots([{"name": "view", "view": "#/", "scales": [1, 2]}]))
    names = ["view-light.png", "view-dark.png", "view-light@2x.png", "view-dark@2x.png"]
    assert status == 0, said
    assert [line.split()[0] for line in said.splitlines()] == names
    pictures = [tmp_path / "pictures" / name for name in names]
    sizes = [size(one) for one in pictures]
    assert sizes[0] == sizes[1] and sizes[2] == sizes[3] == tuple(2 * side for side in sizes[0])
    assert all(map(has_more_than_one_colour, pictures))
    assert pictures[0].read_bytes() != pictures[1].read_bytes()


def test_a_single_picture_goes_where_it_is_wanted(shots, tmp_path):
    wanted = tmp_path / "elsewhere" / "one.png"
    status, said = finish(shots([{"name": "first", "view": "#/"}, {"name": "second", "view": "#/"}], "--one", wanted))
    assert status == 0, said
    assert [one.name for one in wanted.parent.iterdir()] == ["one.png"]


@pytest.mark.slow
def test_a_view_that_is_never_ready_is_said_and_taken_all_the_same(shots, tmp_path):
    status, said = finish(shots([{"name": "view", "view": "#/", "appearances": ["light"]}], body=NEVER_READY))
    assert status == 1
    assert said.startswith("view-light.png") and "TIMED OUT" in said
    assert size(tmp_path / "pictures" / "view-light.png")


def test_what_outlives_the_program_and_writes_to_its_home_spoils_nothing(shots, make_shell, tmp_path):
    program = tmp_path / "program"
    writer = 'while :; do mkdir -p "$HOME/.cache/late" && : >"$HOME/.cache/late/$((count += 1))"; done'
    shell = make_shell(Plan(answers={"/": {"body": PAGE}}))
    program.write_text(f"#!/bin/sh\n( {writer} ) 2>/dev/null &\nexec '{shell.executable}' \"$@\"\n")
    program.chmod(0o755)
    status, said = finish(shots([{"name": "view", "view": "#/", "appearances": ["light"]}], program=program))
    assert status == 0, said
    assert [line.split()[0] for line in said.splitlines()] == ["view-light.png"]


def test_a_program_that_ends_is_said(shots):
    status, said = finish(shots([{"name": "view", "view": "#/", "appearances": ["dark"]}], program="/bin/false"))
    assert status == 1
    assert said == "FAILED: dark, scale 1: the shell ended with 1\n"


@pytest.mark.parametrize(
    "pictures, options",
    [
        ([], []),
        ([{"name": "view"}], []),
        ([{"view": "#/"}], []),
        ([{"name": "view", "view": "#/", "appearances": ["grey"]}], []),
        ([{"name": "view", "view": "#/", "colour": 1}], []),
        ([{"name": "view", "view": "#/"}], ["--only", "another"]),
    ],
    ids=["empty", "no view", "no name", "unknown appearance", "unknown key", "unknown name"],
)
def test_a_list_that_makes_no_sense_is_refused(shots, pictures, options):
    status, said = finish(shots(pictures, *options))
    assert status == 2
    assert said.startswith("script/shots: ") and len(said.splitlines()) == 1


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
def test_a_tool_that_is_interrupted_ends_all_that_it_started(shots, tmp_path, number):
    tool = shots([{"name": str(count), "view": "#/"} for count in range(20)])
    wait_until("the first picture", (tmp_path / "pictures" / "0-light.png").exists, within=40)
    tool.send_signal(number)
    status, said = finish(tool)
    assert status == 130, said
