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

# Installs what is missing of the given package lists; without root and sudo, says what it is.
ensure_packages() {
    local package missing=() sudo=()
    for package in $(packages_of "$@"); do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    if [ "$(id -u)" -ne 0 ]; then
        sudo --non-interactive true 2>/dev/null \
            || fail "neither root nor sudo; please install: ${missing[*]}"
        sudo=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${sudo[@]}" apt-get update --quiet=2
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
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
