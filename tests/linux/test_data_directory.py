"""Where data is kept."""

import os

import pytest


def has_log(base):
    return (base / ".harbrook" / "logs" / "server.log").exists()


def load(shell):
    shell.start()
    shell.server.wait_for_page()


def test_data_is_kept_in_the_home_directory(shell):
    load(shell)
    assert has_log(shell.home)


def test_a_directory_of_an_earlier_version_is_taken_over(shell):
    earlier = shell.home / ".ferncastle"
    (earlier / "logs").mkdir(parents=True)
    (earlier / "projects.json").write_text("{}")
    load(shell)
    assert not earlier.exists()
    assert (shell.data / "projects.json").read_text() == "{}"
    assert has_log(shell.home)


def test_beside_a_current_directory_an_earlier_one_is_left_alone(shell):
    earlier = shell.home / ".ferncastle"
    earlier.mkdir()
    (earlier / "projects.json").write_text("{}")
    shell.data.mkdir()
    load(shell)
    assert [one.name for one in earlier.iterdir()] == ["projects.json"]
    assert [one.name for one in shell.data.iterdir()] == ["logs"]


def test_a_data_directory_that_cannot_be_made_costs_only_the_log(shell):
    shell.data.write_text("a file where the directory should be")
    load(shell)
    assert shell.server.start["descriptors"]["2"] == os.devnull
    assert shell.data.read_text() == "a file where the directory should be"


def test_a_home_that_cannot_be_written_costs_only_the_log(shell):
    shell.data.mkdir()
    shell.data.chmod(0o500)
    # Root, too, has to do without what makes everything writable.
    mortal = ["setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--"] if os.getuid() == 0 else []
    shell.start(through=mortal)
    shell.server.wait_for_page()
    assert shell.server.start["descriptors"]["2"] == os.devnull


@pytest.mark.parametrize("switch, moved", [("1", True), ("true", False), ("01", False), ("1 ", False), (None, False)])
def test_pictures_have_a_home_of_their_own_only_when_switched_on(make_shell, tmp_path, switch, moved):
    other = tmp_path / "other"
    other.mkdir()
    shell = make_shell(environment={"HARBROOK_SHOTS": switch, "HARBROOK_SHOTS_HOME": str(other)})
    load(shell)
    assert has_log(other) is moved
    assert has_log(shell.home) is not moved
    assert shell.server.start["environment"]["HOME"] == str(other if moved else shell.home)


def test_pictures_without_a_home_of_their_own_use_the_real_one(make_shell):
    shell = make_shell(environment={"HARBROOK_SHOTS": "1"})
    load(shell)
    assert has_log(shell.home)
    assert shell.server.start["environment"]["HOME"] == str(shell.home)
