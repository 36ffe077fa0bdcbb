# shellcheck shell=bash
# Lines that the scripts share; sourced, never run. All talk goes to standard
# error, so that standard output belongs to what a script is asked to do.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$*"
    exit 1
}

# quietly COMMAND...: nothing on success, the whole output when it fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if [ "$status" -ne 0 ]; then
        cat "$log" >&2
        say "Failed with status $status: $*"
    fi
    rm -f "$log"
    return "$status"
}

# this_machine: its shape, and the tools' versions, in a line.
this_machine() {
    local memory ffmpeg
    memory=$(awk '/^MemTotal/ { printf "%.0f GB", $2 / 1e6 }' /proc/meminfo)
    ffmpeg=$(ffmpeg -version | sed -n '1s/^ffmpeg version \([^ ]*\) .*/\1/p')
    echo "$(nproc) cores, $memory of memory, $(uname -sr), yt-dlp $(yt-dlp --version), ffmpeg $ffmpeg"
}

# build PRESET [SETTING...]: what changed since the last build. Configures the first time, after the
# presets were edited, and for settings; Ninja itself sees edits of CMakeLists.txt.
build() (
    cd "$root" || exit
    if [ $# -gt 1 ] || [ ! -f "build/$1/build.ninja" ] ||
        [ CMakePresets.json -nt "build/$1/build.ninja" ]; then
        say "Configuring build/$1 ..."
        quietly cmake --preset "$@" || exit
    fi
    say "Building build/$1 ..."
    quietly cmake --build --preset "$1"
)
