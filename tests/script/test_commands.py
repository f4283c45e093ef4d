"""The commands of script/: each says how it is used, refuses what it does not know, and is in the index."""

import os
import re
import subprocess
from pathlib import Path

import pytest

REPOSITORY = Path(__file__).resolve().parents[2]
FOLDER = REPOSITORY / "script"
COMMANDS = sorted(one.name for one in FOLDER.iterdir() if one.is_file() and os.access(one, os.X_OK))

# Hands its arguments to the program, which refuses what it does not know.
PASSES_ON = {"run"}

# What a command needs besides what the system has, and who installs it.
TOOLS = {
    "format": ("clang-format", "--all"),
    "lint": ("clang-tidy", "--all"),
    "fuzz": ("clang++", "--all"),
}


@pytest.fixture
def watched(tmp_path):
    """Runs a command where every program that would do something says so instead."""
    tools = tmp_path / "tools"
    tools.mkdir()
    done = tmp_path / "done"
    for name in ("apt-get", "sudo", "cmake", "ninja", "cpack", "npm", "clang-format", "clang-tidy", "python3", "xargs"):
        (tools / name).write_text(f"#!/bin/sh\necho {name} >>'{done}'\nexit 1\n")
        (tools / name).chmod(0o755)

    def run(name, *arguments):
        ended = subprocess.run(
            [FOLDER / name, *arguments],
            env=os.environ | {"PATH": f"{tools}:{os.environ['PATH']}"},
            cwd=tmp_path,
            capture_output=True,
            text=True,
            stdin=subprocess.DEVNULL,
        )
        assert not done.exists(), f"script/{name} did something: {done.read_text()}"
        return ended

    return run


def first_lines(name):
    return (FOLDER / name).read_text().splitlines()[:2]


@pytest.mark.parametrize("name", COMMANDS)
@pytest.mark.parametrize("option", ["--help", "-h"])
def test_it_says_how_it_is_used(watched, name, option):
    ended = watched(name, option)
    assert ended.returncode == 0
    assert ended.stderr == ""
    assert ended.stdout.startswith(f"script/{name}")
    assert len(ended.stdout.splitlines()) > 1
    assert first_lines(name)[1] == f"# {ended.stdout.splitlines()[0]}"


@pytest.mark.parametrize("name", sorted(set(COMMANDS) - PASSES_ON))
@pytest.mark.parametrize("argument", ["--nonsense", "-x"])
def test_it_refuses_what_it_does_not_know(watched, name, argument):
    ended = watched(name, argument)
    assert ended.returncode != 0
    assert ended.stdout == ""
    assert f"script/{name}" in ended.stderr or f"{name}: " in ended.stderr


@pytest.mark.parametrize("name", ["draw", "test", "fuzz"])
def test_it_refuses_a_word_that_it_does_not_know(watched, name):
    ended = watched(name, "nonsense")
    assert ended.returncode != 0
    assert ended.stdout == ""


@pytest.mark.parametrize("name", sorted(TOOLS))
def test_it_says_who_installs_a_tool_that_is_missing(tmp_path, name):
    tool, option = TOOLS[name]
    usual = tmp_path / "usual"
    usual.mkdir()
    for place in ("/usr/bin", "/bin"):
        for one in Path(place).iterdir():
            link = usual / one.name
            if one.name != tool and not link.exists():
                link.symlink_to(one)
    ended = subprocess.run([FOLDER / name], env={"PATH": str(usual)}, capture_output=True, text=True)
    assert ended.returncode != 0
    assert f"needs {tool}, which script/setup {option} installs" in ended.stderr


def test_the_index_has_each_command_once():
    listed = re.findall(r"^\| `script/(\w+)` \|", (FOLDER / "README.md").read_text(), re.MULTILINE)
    assert sorted(listed) == COMMANDS
