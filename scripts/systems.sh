# SPDX-License-Identifier: MIT
# Sourced after common.sh: Debian systems in folders outside the project, made once and kept.

suite=$(source /etc/os-release && echo "${VERSION_CODENAME:-}")

# The mirror from which this machine's own packages come.
debian_mirror() {
    local mirror
    # shellcheck disable=SC2016 # apt expands it
    mirror=$(apt-get indextargets --format '$(REPO_URI)' \
        'Created-By: Packages' 'Origin: Debian' "Release: $suite" 'Component: main' | head -n 1)
    [ -n "$mirror" ] \
        || fail "apt knows no Debian mirror of '$suite': see its sources, run apt-get update"
    echo "$mirror"
}

# What is in a folder, without reading all of it.
inventory() {
    (cd "$1" && find . -xdev ! -type d -printf '%p %s\n' | sort | sha256sum)
}

# Prints the folder of a system, after making it by "MAKE FOLDER" if there is no whole one.
# What it is made from stands on the standard input: another input, or another MAKE, is another
# system.
cached_system() {
    local name=$1 make=$2 cache key system new
    cache=${XDG_CACHE_HOME:-$HOME/.cache}/libconfigurationmanager
    key=$({ cat; declare -f "$make"; } | sha256sum | head -c 16)
    system=$cache/$name-$key
    mkdir -p "$cache"
    touch "$system.lock"
    exec 8<"$system.lock"
    flock 8
    if [ -d "$system" ] \
        && [ "$(inventory "$system")" != "$(cat "$system.inventory" 2>/dev/null)" ]; then
        echo "$system is not whole any more and is made again" >&2
        rm -rf "$system"
    fi
    if [ ! -d "$system" ]; then
        # Each takes hundreds of megabytes; those that nobody has used for a week go.
        find "$cache" -maxdepth 1 -name "$name-*.lock" -mtime +7 -printf '%p\0' \
            | sed --null-data 's/\.lock$//' | xargs --null --replace \
                rm -rf {} {}.inventory {}.lock
        # Complete before it has its name, so that an interruption leaves nothing that looks whole.
        new=$system.new
        rm -rf --one-file-system "$new"
        "$make" "$new" >&2 || {
            rm -rf --one-file-system "$new"
            fail "the $name system could not be made; if the network or the mirror failed, try again"
        }
        inventory "$new" >"$system.inventory"
        mv "$new" "$system"
    fi
    flock --unlock 8
    echo "$system"
}
