#!/bin/bash
# Installs the packages of packages.txt that are missing, then builds.
# Usage: tools/build.sh PRESET [cmake --build arguments]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

install_packages() {
    local wanted missing
    wanted=$(grep -v '^#' packages.txt)
    # dpkg-query fails where it knows one of the names not, which is just what is asked.
    # shellcheck disable=SC2086
    missing=$({ dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null || true; } |
        awk '$1 == "installed" {print $2}' | sort | comm -13 - <(sort <<<"$wanted"))
    [ -n "$missing" ] || return 0
    echo "Installing: "$missing
    local sudo=""
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || {
            echo "These Debian packages are missing and only root can install them:" $missing >&2
            exit 1
        }
        sudo=sudo
    fi
    $sudo apt-get update -qq
    # shellcheck disable=SC2086
    $sudo env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

command -v dpkg-query >/dev/null && install_packages
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" "$@"
