# shellcheck shell=bash
# Sourced by the scripts that make and test the package, after scripts/lib.sh.

# need PACKAGE...: installs what is missing of Debian's packages.
need() {
    local package missing=() as_root=()
    for package in "$@"; do
        # shellcheck disable=SC2016 # a field of dpkg-query
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing: ${missing[*]}"
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    quietly "${as_root[@]}" apt-get -q update
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
        -o DPkg::Lock::Timeout=300 install --no-install-recommends "${missing[@]}"
}
