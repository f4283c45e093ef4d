# What the commands in tests/macos share. Sourced, never run.
# shellcheck shell=bash
source "$(dirname "${BASH_SOURCE[0]}")/../../script/lib/common.bash"

cd "$root"
tests=$root/tests/macos
folder=$root/build/macos
passed=0 failed=0
mkdir -p "$folder"

check() {
    local title=$1
    shift
    printf -- '- %s\n' "$title"
    if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)) && printf 'FAILED: %s\n' "$title"; fi
}

# Says how many checks passed; the last thing that a command does.
sum_up() {
    printf '%d passed, %d failed\n' $passed $failed
    [ $failed -eq 0 ]
}

# Shows what a command says only when it fails.
quietly() {
    local log
    log=$folder/$(basename "$0").log
    nice -n 5 "$@" >"$log" 2>&1 || { cat "$log" && return 1; }
}

# configure TREE PRESET OPTION...: once for a tree.
configure() {
    local tree=$folder/$1 preset=$2
    shift 2
    [ -f "$tree/build.ninja" ] || quietly cmake --preset "$preset" -B "$tree" "$@"
}

# What stands in for the development kit, with GoogleTest where it is `googletest` that names its place. A change of its
# makers or of the flags starts afresh; ccache keeps that short.
make_sysroot() {
    local state
    state=$(cat "$tests/toolchain.cmake" "$tests/tools/sysroot.py" | sha256sum)
    [ "$(cat "$folder/.state" 2>/dev/null)" = "$state" ] || rm -rf "$folder/sysroot" "$folder/tree" "$folder/tests"
    quietly python3 "$tests/tools/sysroot.py" "$folder/sysroot" ${googletest+"$googletest"} || return 1
    printf '%s\n' "$state" >"$folder/.state"
}

configure_for_macos() {
    configure "$@" -DCMAKE_TOOLCHAIN_FILE="$tests/toolchain.cmake" -DHARBROOK_MACOS_SYSROOT="$folder/sysroot" \
        -DCMAKE_OBJCXX_COMPILER_LAUNCHER=ccache
}
