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
usage_text() { sed -n '2,/^[^#]/ { s/^# \{0,1\}//p; }' "$0"; }

usage() {
    usage_text
    exit "${1:-0}"
}

# need TOOL SET: ends when the tool is missing, which script/setup SET installs.
need() { command -v "$1" >/dev/null || die "needs $1, which script/setup${2:+ $2} installs"; }

# For commands without arguments: tells how they are used when asked, and refuses everything else.
take_no_arguments() {
    case ${1-} in
    '') ;;
    --help | -h) usage ;;
    *) usage 2 >&2 ;;
    esac
}

# Homebrew keeps its ICU where no compiler looks by itself, because macOS has an older one of its own.
if on_macos && icu=$(brew --prefix icu4c 2>/dev/null); then
    export ICU_ROOT=$icu PKG_CONFIG_PATH=$icu/lib/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}
fi

# One clone profits from what another has compiled.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=true

# Becomes Debian's Python, which the desktop's bindings are made for, with the harness that drives the program.
become_python() { exec env PYTHONPATH="$root/tests:$root/script/lib" /usr/bin/python3 "$@"; }

# Warnings stop those who change the program. Whoever only builds it may have a newer compiler, which knows more of them.
warnings_as_errors=OFF

warnings_stop() { grep --quiet '^CMAKE_COMPILE_WARNING_AS_ERROR:.*=ON$' "$1/CMakeCache.txt"; }

# Configures only what was never configured: the build itself notices changed CMake files. An upgrade of Homebrew's ICU
# it would not notice, which takes files away and renames functions; the folder is made anew, then.
build() {
    local preset=$1 folder=build/$1 icu
    shift
    cd "$root"
    need cmake ''
    need ninja ''
    icu=$(cd "${ICU_ROOT:-/}" && pwd -P)
    [ "$icu" = "$(cat "$folder/.icu" 2>/dev/null || printf '%s' "$icu")" ] || rm -rf "$folder"
    if [ ! -f "$folder/build.ninja" ] || { [ $warnings_as_errors = ON ] && ! warnings_stop "$folder"; }; then
        cmake --preset "$preset" "-DCMAKE_COMPILE_WARNING_AS_ERROR=$warnings_as_errors"
        printf '%s\n' "$icu" >"$folder/.icu"
    fi
    cmake --build "$folder" "$@"
}

# The packages that the dashboard is tested, checked and laid out with, fetched once for a state of its lock file.
dashboard_packages() {
    local dashboard=$root/dashboard
    cmp --silent "$dashboard/package-lock.json" "$dashboard/node_modules/.fetched" && return
    (cd "$dashboard" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error >&2)
    cp "$dashboard/package-lock.json" "$dashboard/node_modules/.fetched"
}

# In a folder of their own: that of the program keeps its options.
build_benchmarks() {
    cd "$root"
    [ -f build/bench/build.ninja ] || cmake --preset release -B build/bench -DHARBROOK_BENCH=ON
    cmake --build build/bench --target bench/all
}

# Where the tests of the program find it, with nothing left of an earlier one.
install_program() {
    rm -rf "$root/build/stage"
    cmake --install "$root/build/release" --prefix "$root/build/stage" >/dev/null
}
