"""How the shell starts the server: arguments, folder, environment, streams, log."""

import hashlib
import os

import pytest

from harness.server import Plan, announce, complain, drain, flood, flood_numbered, say, say_bytes, serve
from harness.shell import MARK
from harness.waiting import wait_until

# The interpreter of the scripted server ignores these by itself: SIGPIPE and SIGXFSZ.
IGNORED_BY_PYTHON = 1 << 12 | 1 << 24
# The C library keeps these two to itself, and a program that it spawns finds them ignored.
OF_THE_C_LIBRARY = 1 << 31 | 1 << 32


def test_the_server_gets_its_script_as_the_only_argument(running):
    assert running.server.start["arguments"] == [str(running.resources / "app" / "server.js")]


def test_the_server_runs_in_the_folder_of_its_script(running):
    assert running.server.start["folder"] == str(running.resources / "app")


def test_the_server_gets_the_shells_environment_and_five_variables_more(running):
    environment = running.server.start["environment"]
    token = environment.pop("HARBROOK_TOKEN")
    assert len(token) == 64 and set(token) <= set("0123456789abcdef")
    assert environment == running.environment | {
        "HARBROOK_PORT": "47545",
        "HARBROOK_PORT_FALLBACK": "1",
        "HARBROOK_PARENT": str(running.pid),
    }


def test_the_server_does_not_pass_for_the_program_that_was_launched(make_shell):
    shell = make_shell(environment={"DESKTOP_STARTUP_ID": "launch-1_TIME1", "XDG_ACTIVATION_TOKEN": "launch-1"})
    shell.start()
    assert not {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"} & set(shell.server.start["environment"])


def test_what_the_environment_says_already_is_replaced(make_shell):
    shell = make_shell(environment={"HARBROOK_PORT": "1", "HARBROOK_TOKEN": "guess", "HARBROOK_PARENT": "1"})
    shell.start()
    environment = shell.server.start["environment"]
    assert environment["HARBROOK_PORT"] == "47545"
    assert environment["HARBROOK_PARENT"] == str(shell.pid)
    assert environment["HARBROOK_TOKEN"] != "guess"


def test_two_launches_have_two_tokens(shell):
    for launch in range(2):
        shell.start()
        shell.switchboard.server(launch).wait_for_page()
        shell.quit()
    first, second = (server.start["environment"]["HARBROOK_TOKEN"] for server in shell.switchboard.servers)
    assert first != second


def test_the_server_is_a_child_of_the_shell(running):
    assert running.server.start["parent"] == running.pid


def test_the_server_inherits_nothing_but_its_three_streams(running):
    assert set(running.server.start["descriptors"]) == {"0", "1", "2"}


def test_the_servers_streams_are_a_pipe_a_pipe_and_the_log(running):
    start = running.server.start
    assert start["pipes"] == ["0", "1"]
    assert start["descriptors"]["0"] != start["descriptors"]["1"]
    assert start["descriptors"]["2"] == str(running.log)


def test_the_server_starts_with_ordinary_signals(running):
    assert running.server.start["blocked"] == 0
    assert running.server.start["ignored"] & ~(IGNORED_BY_PYTHON | OF_THE_C_LIBRARY) == 0


def test_the_servers_input_stays_open_and_empty(running):
    running.server.evaluate("1")
    assert not {"input", "input-closed"} & set(running.server.names())


def test_the_log_holds_output_and_complaints_byte_for_byte(make_shell):
    noise = bytes(range(256)) + b"\xc3"
    plan = Plan([say("one\n"), drain(), complain("two\n"), say_bytes(noise), drain(), serve(), announce()])
    shell = make_shell(plan)
    shell.start()
    shell.server.wait_for_page()
    expected = {b"one\ntwo\n", b"two\none\n"}
    rest = noise + f"HARBROOK_PORT {shell.server.port}\n".encode()
    wait_until("the log is complete", lambda: shell.log.read_bytes().endswith(rest))
    # Two writers share the file, each with its own timing; neither may lose a byte of the other.
    assert shell.log.read_bytes().removesuffix(rest) in expected


def test_the_log_holds_the_current_launch_only(shell):
    shell.log.parent.mkdir(parents=True)
    shell.log.write_text("from yesterday\n" * 100)
    shell.start()
    shell.server.wait_for_page()
    wait_until("it is logged", lambda: shell.log.read_text() == f"HARBROOK_PORT {shell.server.port}\n")


def test_a_server_that_floods_a_hundred_megabytes_is_logged_whole_and_the_page_lives(running):
    before = running.log.stat().st_size
    running.server.do(flood_numbered(100_000_000))
    flooded = running.server.wait_for("flooded", within=60)
    wait_until("all is in the log", lambda: running.log.stat().st_size >= before + flooded["size"], within=60)
    logged = running.log.read_bytes()[before:]
    assert (len(logged), hashlib.sha256(logged).hexdigest()) == (flooded["size"], flooded["digest"])
    assert running.server.evaluate("6 * 7") == 42


def test_a_flood_of_near_announcements_does_not_delay_the_real_one(make_shell):
    shell = make_shell(Plan([serve(), flood(100_000_000, line="HARBROOK_POR HARBROOK_PORTS"), announce(before="\n")]))
    shell.start()
    shell.server.wait_for_page()


@pytest.mark.parametrize("name", ["node", "harbrook"])
def test_a_link_to_the_program_finds_its_resources(shell, tmp_path, name):
    link = tmp_path / name
    link.symlink_to(os.path.relpath(shell.executable, tmp_path))
    shell.executable = link
    shell.start()
    shell.server.wait_for_page()
    assert shell.server.start["environment"][MARK] == shell.mark
