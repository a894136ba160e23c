# SPDX-License-Identifier: MIT
# Sourced by the scripts beside it: moves into the project and defines what they share.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# What has been compiled once is taken from the cache, also for a copy of the project elsewhere.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR=$PWD
fi

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# The package lists that the given names stand for, without comments.
packages_of() {
    local list
    for list in "$@"; do
        sed 's/#.*//; /^[[:space:]]*$/d' "scripts/packages/$list"
    done
}

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Sets as_root to what a command begins with to be run as root, or fails with the message. Somebody
# at a terminal can be asked for a password.
require_root() {
    local message=$1
    as_root=()
    [ "$(id -u)" -ne 0 ] || return 0
    as_root=(sudo)
    [ -t 0 ] || as_root+=(--non-interactive)
    "${as_root[@]}" true 2>/dev/null || fail "$message"
}

# Installs what is missing of the given package lists; without root and sudo, says what it is.
ensure_packages() {
    local package missing=()
    for package in $(packages_of "$@"); do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    require_root "neither root nor sudo; please install: ${missing[*]}"
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update --quiet=2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install --quiet=2 --yes --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures the preset, if that has not been done, and builds it, or the given targets of it.
build() {
    local preset=$1 target_option=()
    shift
    [ $# -eq 0 ] || target_option=(--target "$@")
    mkdir -p build
    # Two scripts at a time must not build in the same folder.
    exec 9>"build/.$preset.lock"
    flock 9
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build --preset "$preset" "${target_option[@]}"
    exec 9>&-
}

# Prints a folder for temporary files in which sockets have short and plain names, as their addresses
# need, and in which programs can be run: TMPDIR may be neither, and /tmp may allow no programs.
temporary_folder() {
    local folder probe
    for folder in "${TMPDIR:-/tmp}" /tmp /var/tmp "$PWD/build"; do
        [[ $folder =~ ^[A-Za-z0-9/._-]{1,50}$ ]] || continue
        probe=$(mktemp "$folder/XXXXXXXX" 2>/dev/null) || continue
        printf '#!/bin/sh\n' >"$probe"
        chmod u+x "$probe"
        if "$probe" 2>/dev/null; then
            rm "$probe"
            echo "$folder"
            return
        fi
        rm "$probe"
    done
    fail "no folder for temporary files is good for sockets and programs: set TMPDIR to one with a" \
        "name of at most 50 letters, digits and /._-, in which programs can be run"
}

# Prints after how many seconds a test is to be taken for one that hangs: 300 on a fast and idle
# machine, the more the longer five starts of the tool take, in an emulator or beside other work.
time_limit() {
    local start
    start=$(date +%s%3N)
    for _ in {1..5}; do
        "$@" --version >/dev/null
    done
    echo $((300 + $(date +%s%3N) - start))
}

# Runs the tests of a preset's build; what follows goes to ctest. Ends with the tests that were
# skipped, and why; they are kept in build/skipped-tests under the name of the script.
#
# test_apart: what ctest is run by, if the tests must not see other processes.
# emulator: what the programs are run by, if they are another machine's.
test_apart=()
emulator=()
run_tests() {
    local -x TMPDIR
    TMPDIR=$(temporary_folder)
    local folder=build/$1 skipped=build/skipped-tests/${0##*/} limit=300 status=0
    shift
    if [ -x "$folder/tool/embosserctl" ]; then
        limit=$(time_limit "${emulator[@]}" "$folder/tool/embosserctl")
    fi
    # Qt has a limit of its own, in milliseconds.
    local -x QTEST_FUNCTION_TIMEOUT=$((limit * 1000))
    "${test_apart[@]}" ctest --test-dir "$folder" --parallel "$(nproc)" --output-on-failure \
        --no-tests=error --timeout "$limit" "$@" \
        || status=$?
    mkdir -p build/skipped-tests
    awk -f scripts/skipped-tests.awk "$folder/Testing/Temporary/LastTest.log" | sort --unique >"$skipped"
    if [ -s "$skipped" ]; then
        printf '\nSkipped:\n'
        sed 's/^/    /' "$skipped"
    fi
    return $status
}
