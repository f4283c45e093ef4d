"""Nothing is tried that is older than what was built."""

import os
import shutil

import pytest

from harness.shell import newer_in_build


@pytest.fixture
def built(tmp_path):
    build = tmp_path / "build"
    (build / "resources" / "app").mkdir(parents=True)
    for name in ("harbrook", "resources/app/server.js", "resources/.stamp"):
        (build / name).write_text("built")
        os.utime(build / name, (1000, 1000))
    return build


@pytest.fixture
def installed(tmp_path, built):
    stage = tmp_path / "stage"
    shutil.copytree(built / "resources", stage / "share" / "harbrook", ignore=shutil.ignore_patterns(".stamp"))
    (stage / "bin").mkdir()
    shutil.copy2(built / "harbrook", stage / "bin")
    return stage


def test_what_was_just_installed_is_not_stale(built, installed):
    assert newer_in_build(built, installed) is None


@pytest.mark.parametrize("name", ["harbrook", "resources/app/server.js"])
def test_a_file_that_was_built_since_is_named(built, installed, name):
    os.utime(built / name, (2000, 2000))
    assert newer_in_build(built, installed) == built / name


def test_a_file_that_was_never_installed_is_named(built, installed):
    (built / "resources" / "new.png").write_text("built")
    assert newer_in_build(built, installed) == built / "resources" / "new.png"
