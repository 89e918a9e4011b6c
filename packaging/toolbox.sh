# Shared by the commands of this repository; sourced, with the repository as the working folder.
# shellcheck shell=bash

say() {
    printf '==> %s\n' "$*"
}

# Prints the packages of the named sections of the package list.
packages_of() {
    local section
    for section in "$@"; do
        awk -v wanted="[$section]" '
            /^\[/ { isWanted = ($0 == wanted); next }
            isWanted && NF && !/^#/ { print $1 }' packaging/debian-packages.txt
    done | sort -u
}

# Installs what is missing of the named sections.
install_missing() {
    local wanted missing
    wanted=$(packages_of "$@")
    if ! command -v apt-get >/dev/null; then
        say "This is no Debian-like system, so nothing is installed. What Debian calls:"
        say "${wanted//$'\n'/ }"
        say "is taken for granted."
        return
    fi
    # dpkg-query fails when it does not know a package, and lists the others all the same.
    # shellcheck disable=SC2086  # one word a package
    missing=$(comm -23 <(printf '%s\n' $wanted) \
        <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
            awk '$1 == "installed" { print $2 }' | sort -u))
    [[ -n $missing ]] || return 0

    local apt=(env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0)
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            say "Packages are missing, and only root can install them. As root, run:"
            say "apt-get install --no-install-recommends ${missing//$'\n'/ }"
            exit 1
        fi
        apt=(sudo "${apt[@]}")
    fi
    say "Installing ${missing//$'\n'/ }"
    # Maintainer scripts talk a lot; what they say matters only when something fails.
    local log
    log=$(mktemp)
    # shellcheck disable=SC2086  # one word a package
    if ! { "${apt[@]}" update &&
        "${apt[@]}" install -y --no-install-recommends $missing; } >"$log" 2>&1; then
        cat "$log"
        say "The packages could not be installed."
        exit 1
    fi
    rm "$log"
}

# Builds a preset, with ccache where there is one. Further arguments go to the build.
build_preset() {
    local preset=$1
    shift
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    if [[ ! -e build/$preset/build.ninja ]]; then
        say "Configuring $preset"
        cmake --preset "$preset" >/dev/null
    fi
    say "Building $preset"
    cmake --build --preset "$preset" "$@"
}
