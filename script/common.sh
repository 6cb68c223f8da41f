# Sourced by the scripts beside it.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=${KIRVO_CACHE:-/var/cache/kirvo}
jobs=$(nproc)

say() { printf '== %s\n' "$*" >&2; }

# Installs the packages that are missing.
need() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "installing ${missing[*]}"
    retry as_root apt-get update -qq &&
        retry as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y \
            --no-install-recommends -o DPkg::Lock::Timeout=900 "${missing[@]}" >&2
}

# A mirror may fail in passing.
retry() {
    local pause
    for pause in 2 5 10 20 40; do
        "$@" && return
        say "failed, again in $pause s: $*"
        sleep "$pause"
    done
    "$@"
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

need_compiler() { need cmake ninja-build g++ libcli11-dev googletest "$@"; }

# Gives the programs that follow a virtual display, until this script ends.
start_display() {
    [ -z "${DISPLAY:-}" ] || return 0
    exec {display}< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 2>/dev/null)
    xvfb=$!
    trap 'kill $xvfb' EXIT
    read -r -u "$display" DISPLAY
    export DISPLAY=:$DISPLAY
}
