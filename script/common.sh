# Sourced by the scripts beside it.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# What is made once and kept; of who may not write there, in a folder of their own.
cache=/var/cache/kirvo
[ "$(id -u)" = 0 ] || [ -d "$cache" ] || cache=${XDG_CACHE_HOME:-$HOME/.cache}/kirvo
cache=${KIRVO_CACHE:-$cache}
jobs=$(nproc)

say() { printf '== %s\n' "$*" >&2; }

# Every script takes --no-install: it then names the packages that are missing and installs nothing.
for argument in "$@"; do
    shift
    if [ "$argument" = --no-install ]; then
        export KIRVO_NO_INSTALL=1
    else
        set -- "$@" "$argument"
    fi
done
unset argument

# Installs the packages that are missing.
need() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ -n "${KIRVO_NO_INSTALL:-}" ]; then
        say "these packages of Debian 12 are missing: ${missing[*]}"
        return 1
    fi
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

# Runs a command into a log. When it fails, shows the errors in there, or the end.
logged() {
    local log=$1
    shift
    "$@" >"$log" 2>&1 || {
        grep -E -A8 'error|FAILED|CMake Error' "$log" | tail -n 60 >&2 || tail -n 30 "$log" >&2
        return 1
    }
}

# Configures a preset and builds its targets: PRESET [ARGUMENTS OF CMAKE ...] [-- TARGET ...]
build() {
    local preset=$1 arguments=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        arguments+=("$1")
        shift
    done
    cmake --preset "$preset" "${arguments[@]}" &&
        cmake --build --preset "$preset" --parallel "$jobs" ${2:+--target "${@:2}"}
}

# The source package of Debian that is installed here, whatever sources apt is set up with, into the
# folder where it is called.
fetch_source() {
    local package=$1 mirror release
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mirror=$(apt-get indextargets --format '$(REPO_URI)' "Codename: $release" \
        'Created-By: Packages' | sort -u | head -n 1)
    mkdir -p lists/partial
    echo "deb-src ${mirror:-http://deb.debian.org/debian} $release main" >sources.list
    local options=(-o "Dir::Etc::sourcelist=$PWD/sources.list" -o Dir::Etc::sourceparts=-
        -o "Dir::State::Lists=$PWD/lists" -o Dir::Cache::srcpkgcache= -o Dir::Cache::pkgcache=)
    retry apt-get "${options[@]}" update &&
        retry apt-get "${options[@]}" source "$package"
}

# What every build takes, the libraries of picture formats for KirvoFiles among it.
need_compiler() {
    need cmake ninja-build g++ libcli11-dev nlohmann-json3-dev googletest libjpeg62-turbo-dev \
        libturbojpeg0-dev libspng-dev libtiff-dev libwebp-dev libgif-dev "$@"
}

# Gives the programs that follow a display: the caller's, or a virtual one (Debian's xvfb) with a window
# manager (openbox), for which Wine would wait at each window that closes. All scripts share it, and it
# ends a few seconds after its last user. Users hold display.users shared, the process that
# keeps the display holds display.keeper.
start_display() {
    [ -z "${DISPLAY:-}" ] || return 0
    mkdir -p "$cache"
    exec {display_users}>>"$cache/display.users"
    flock --shared "$display_users"
    (
        flock 9
        if flock --nonblock "$cache/display.keeper" rm -f "$cache/display"; then
            keep_display </dev/null >/dev/null 2>&1 9>&- {display_users}>&- &
        fi
        for _ in {1..300}; do
            [ ! -e "$cache/display" ] || exit 0
            sleep 0.1
        done
        exit 1
    ) 9>"$cache/display.lock"
    DISPLAY=:$(<"$cache/display")
    export DISPLAY
}

keep_display() {
    local keeper users xvfb
    exec {keeper}>"$cache/display.keeper" {users}>>"$cache/display.users"
    flock "$keeper"
    : >"$cache/display.part"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$cache/display.part" \
        {keeper}>&- {users}>&- &
    xvfb=$!
    while [ ! -s "$cache/display.part" ]; do
        sleep 0.1
        kill -0 "$xvfb"
    done
    DISPLAY=:$(<"$cache/display.part") openbox {keeper}>&- {users}>&- & # which ends with the display
    mv "$cache/display.part" "$cache/display"
    while sleep 3 && kill -0 "$xvfb"; do
        ! flock --nonblock "$users" || break
    done
    rm -f "$cache/display"
    kill "$xvfb"
}
