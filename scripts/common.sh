# SPDX-License-Identifier: MIT
# Sourced by the scripts beside it: moves into the project and defines what they share.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

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
