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

# One clone profits from what another has compiled.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=true

# Configures only what was never configured: the build itself notices changed CMake files.
build() {
    local preset=$1
    shift
    cd "$root"
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build "build/$preset" "$@"
}
