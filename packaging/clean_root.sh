# shellcheck shell=bash
# shellcheck disable=SC2154,SC2317 # what others set, and what only a trap calls
# Sourced, after scripts/lib.sh, by what tries the program on a clean Debian. clean_root starts that in
# namespaces of its own, so that mounts and processes need no tidying up; all else is called in there.

[ "$(id -u)" -eq 0 ] || die "Only root can enter a Debian of its own: sudo $0"

# clean_root COMMAND SUITE [ARGUMENT...]: runs a COMMAND of this folder, with the SUITE and a FOLDER
# before the arguments, and ends with its status.
clean_root() (
    scratch='' tester=''
    end() {
        [ -z "$tester" ] || kill -KILL "$tester" 2>/dev/null || true
        [ -z "$tester" ] || wait "$tester" 2>/dev/null || true
        [ -z "$scratch" ] || rm -rf --one-file-system "$scratch" 2>/dev/null ||
            { sleep 2 && rm -rf --one-file-system "$scratch"; }
    }
    trap end EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    need debootstrap
    # Not /tmp, which may be in memory, or closed to devices.
    scratch=$(mktemp -d -p "${TMPDIR:-/var/tmp}" reelcrate-clean-XXXXXX)
    chmod 755 "$scratch"
    unshare --mount --propagation private --pid --fork --kill-child \
        "$root/packaging/$1" "$2" "$scratch/root" "${@:3}" </dev/null &
    tester=$!
    status=0
    wait "$tester" || status=$?
    tester=''
    exit "$status"
)

# The rest is for COMMAND, once it has set `suite` and `clean`, its folder.

# The machine's own way to Debian's archive serves the clean system too, whatever its suite.
sources() {
    local entry=() codename
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    # shellcheck disable=SC2016 # fields of apt-get
    IFS='|' read -r -a entry < <(apt-get indextargets \
        --format '$(SOURCESENTRY)|$(REPO_URI)|$(RELEASE)' 'Created-By: Packages' \
        'Origin: Debian' 'Label: Debian' "Codename: $codename" 'Component: main') ||
        die "No apt source of this machine serves Debian's suite $codename."
    local file=${entry[0]%:*}
    uri=${entry[1]} form=${file##*.}
    source_text=$("$root/scripts/backports_source.py" \
        "$file" "$uri" "${entry[2]}" "$suite-backports")
    source_text=${source_text//" ${entry[2]} "/" $suite "}
    keyring=$(sed -nE '/signed-by[:=] *\//I { s/.*signed-by[:=] *([^] ]+).*/\1/Ip; q }' \
        <<<"$source_text")
    local proxy=
    eval "$(apt-config shell proxy Acquire::http::Proxy)"
    proxy=${proxy:-${http_proxy:-}}
    if [ -n "$proxy" ]; then
        export http_proxy=$proxy
        inside+=("http_proxy=$proxy")
    fi
}

# Makes `inside` what runs in the clean system, in an environment of its own:
# "${inside[@]}" [NAME=VALUE...] COMMAND...
make_clean_root() {
    local with_keyring=()
    inside=(env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root
        LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive chroot "$clean" env)
    say "Making a clean Debian $suite ..."
    sources
    [ ! -f "$keyring" ] || with_keyring=(--keyring "$keyring")
    quietly debootstrap --variant=minbase "${with_keyring[@]}" "$suite" "$clean" "$uri"
    if [ -f "$keyring" ]; then
        install -D -m 644 "$keyring" "$clean$keyring"
    fi
    rm -f "$clean/etc/apt/sources.list"
    printf '%s\n' "$source_text" >"$clean/etc/apt/sources.list.d/machine.$form"
    printf '%s\n' "Package: yt-dlp" "Pin: release n=$suite-backports" "Pin-Priority: 500" \
        >"$clean/etc/apt/preferences.d/yt-dlp"
    # Nothing that is installed there starts as a service.
    printf '#!/bin/sh\nexit 101\n' >"$clean/usr/sbin/policy-rc.d"
    chmod 755 "$clean/usr/sbin/policy-rc.d"
    mount_clean_root
    quietly "${inside[@]}" apt-get -q update
}

# Mounts, as its maker's mount namespace alone sees them.
mount_clean_root() {
    local device
    mount -t proc proc "$clean/proc"
    mount -t tmpfs -o mode=755 tmpfs "$clean/dev"
    for device in null zero full random urandom; do
        : >"$clean/dev/$device"
        mount --bind "/dev/$device" "$clean/dev/$device"
    done
    mkdir "$clean/dev/pts" "$clean/dev/shm"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$clean/dev/pts"
    mount -t tmpfs -o mode=1777 tmpfs "$clean/dev/shm"
    ln -s pts/ptmx "$clean/dev/ptmx"
    ln -s /proc/self/fd "$clean/dev/fd"
}

add_packages() {
    quietly "${inside[@]}" apt-get -q -y install --no-install-recommends "$@"
}

# expect STATUS COMMAND...: what it prints is for the reader.
expect() {
    local status=0
    "${inside[@]}" "${@:2}" </dev/null >&2 || status=$?
    [ "$status" -eq "$1" ] || die "Ended with status $status instead of $1: ${*:2}"
}
