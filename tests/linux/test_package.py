"""The Debian package: what is in it, what it asks for, and what launchers and software centres read."""

import re
import struct
import subprocess
import xml.etree.ElementTree as ElementTree
from configparser import ConfigParser
from pathlib import Path

import pytest

from harness.shell import REPOSITORY

ID = "com.brackenforge.harbrook"
ICON_SIZES = (16, 24, 32, 48, 64, 128, 256, 512)

SYSTEM_FILES = {
    "usr/bin/harbrook",
    f"usr/share/applications/{ID}.desktop",
    f"usr/share/dbus-1/services/{ID}.service",
    f"usr/share/metainfo/{ID}.metainfo.xml",
    "usr/share/man/man1/harbrook.1.gz",
    "usr/share/doc/harbrook/copyright",
    "usr/share/doc/harbrook/changelog.gz",
    f"usr/share/icons/hicolor/scalable/apps/{ID}.svg",
    f"usr/share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
} | {f"usr/share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in ICON_SIZES}

# The bundles with their source maps, and what comes with them.
WORKERS = [path.name for path in (REPOSITORY / "dashboard/lib").rglob("*-worker.js")]
DASHBOARD_FILES = {f"{name}{suffix}" for name in ["server.js", *WORKERS] for suffix in ["", ".map"]} | {
    "package.json",
    "third-party.txt",
    "page/index.html",
    "page/page.js.map",
    "page/page.css.map",
    "page/icon.svg",
}

# The libraries that the program itself calls, and what it starts by name.
DEPENDENCIES = {
    "nodejs",
    "bubblewrap",
    "libglib2.0-bin",
    "libc6",
    "libcairo2",
    "libgcc-s1",
    "libglib2.0-0",
    "libgtk-4-1",
    "libicu72",
    "libjavascriptcoregtk-6.0-1",
    "libpango-1.0-0",
    "libsoup-3.0-0",
    "libstdc++6",
    "libwebkitgtk-6.0-4",
    "libx11-6",
}


def run(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


@pytest.fixture(scope="module")
def package(tmp_path_factory):
    folder = tmp_path_factory.mktemp("package")
    run("cpack", "--config", REPOSITORY / "build" / "release" / "CPackConfig.cmake", "-B", folder)
    (package,) = folder.glob("*.deb")
    return package


@pytest.fixture(scope="module")
def tree(package):
    tree = package.with_name("tree")
    run("dpkg-deb", "--extract", package, tree)
    return tree


def desktop_entry(tree):
    entry = ConfigParser(interpolation=None, strict=True)
    entry.optionxform = str
    entry.read(tree / f"usr/share/applications/{ID}.desktop")
    return entry


def test_it_holds_the_program_and_nothing_else(tree):
    dashboard = {f"usr/share/harbrook/app/{name}" for name in DASHBOARD_FILES}
    tracked = run("git", "-C", REPOSITORY / "resources", "ls-files", "--", "*.png").splitlines()
    pictures = {f"usr/share/harbrook/{name}" for name in tracked}
    found = {str(path.relative_to(tree)) for path in tree.rglob("*") if not path.is_dir()}
    assert found == SYSTEM_FILES | dashboard | pictures


def test_only_the_program_may_be_executed_and_only_root_may_write(tree):
    for path in tree.rglob("*"):
        runs = path.is_dir() or path.name == "harbrook"
        assert path.stat().st_mode & 0o7777 == (0o755 if runs else 0o644), path


def test_it_depends_on_what_the_program_uses_and_nothing_else(package):
    field = run("dpkg-deb", "--field", package, "Depends")
    assert {part.split()[0] for part in field.split(",")} == DEPENDENCIES
    assert "nodejs (>= 18)" in field


def test_lintian_has_nothing_to_say(package):
    assert run("lintian", "--allow-root", "--fail-on", "none", package) == ""


def test_software_centres_can_read_it(tree):
    run("appstreamcli", "validate-tree", "--no-net", "--explain", tree)


def test_the_entry_in_the_launcher(tree):
    run("desktop-file-validate", tree / f"usr/share/applications/{ID}.desktop")
    entry = desktop_entry(tree)["Desktop Entry"]
    assert entry["Icon"] == ID
    assert entry["StartupWMClass"] == ID


def test_the_bus_starts_the_entry_under_its_own_name(tree):
    service = ConfigParser(interpolation=None)
    service.read(tree / f"usr/share/dbus-1/services/{ID}.service")
    assert dict(service["D-BUS Service"]) == {"name": ID, "exec": "/usr/bin/harbrook --gapplication-service"}
    assert desktop_entry(tree)["Desktop Entry"].getboolean("DBusActivatable")


@pytest.mark.parametrize("size", ICON_SIZES)
def test_the_icon_has_the_size_that_its_folder_says(tree, size):
    picture = (tree / f"usr/share/icons/hicolor/{size}x{size}/apps/{ID}.png").read_bytes()
    assert picture.startswith(b"\x89PNG")
    assert struct.unpack(">II", picture[16:24]) == (size, size)


def test_the_symbolic_icon_has_one_colour_for_the_theme_to_replace(tree):
    drawing = (tree / f"usr/share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg").read_text()
    assert set(re.findall(r"#[0-9a-f]{6}", drawing)) == {"#2e3436"}


def test_every_document_names_the_same_version(package):
    version = run("dpkg-deb", "--field", package, "Version").strip()
    metainfo = ElementTree.parse(REPOSITORY / f"packaging/linux/{ID}.metainfo.xml")
    release = metainfo.find("releases/release").attrib

    def first(pattern, name):
        return re.search(pattern, Path(REPOSITORY / name).read_text(), re.MULTILINE)

    assert release["version"] == version
    assert first(r"^## (\S+)", "CHANGELOG.md")[1] == version
    assert first(r"^harbrook \((\S+)\)", "packaging/linux/debian/changelog")[1] == version
    assert first(r'"version": "([^"]+)"', "dashboard/package.json")[1] == version
    assert first(r'^\.TH HARBROOK 1 (\S+) "Harbrook (\S+)"', "packaging/linux/harbrook.1").groups() == (
        release["date"],
        version,
    )
