# What the commands in script/ share. Sourced, never run.
# shellcheck shell=bash
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$(basename "$0"): $*"
    exit 1
}

on_macos() { [ "$(uname -s)" = Darwin ]; }

# The usage text of a command is the comment under its first line.
usage() {
    sed -n '2,/^[^#]/ { s/^# \{0,1\}//p; }' "$0"
    exit "${1:-0}"
}

# Homebrew keeps its ICU where no compiler looks by itself, because macOS has an older one of its own.
if on_macos && icu=$(brew --prefix icu4c 2>/dev/null); then
    export ICU_ROOT=$icu PKG_CONFIG_PATH=$icu/lib/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}
fi

# One clone profits from what another has compiled.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=true

# Becomes Debian's Python, which the desktop's bindings are made for, with the harness that drives the program.
become_python() { exec env PYTHONPATH="$root/tests:$root/script/lib" /usr/bin/python3 "$@"; }

# Configures only what was never configured: the build itself notices changed CMake files.
build() {
    local preset=$1
    shift
    cd "$root"
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build "build/$preset" "$@"
}

# The packages that the dashboard is tested, checked and laid out with, fetched once for a state of its lock file.
dashboard_packages() {
    local dashboard=$root/dashboard
    cmp --silent "$dashboard/package-lock.json" "$dashboard/node_modules/.fetched" && return
    (cd "$dashboard" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error >&2)
    cp "$dashboard/package-lock.json" "$dashboard/node_modules/.fetched"
}
