# For the scripts that build: `. scripts/packages.sh`, then `need PACKAGE...`.

# Installs those of the Debian packages that are missing, as root or with sudo.
need() {
    if ! command -v apt-get >/dev/null; then
        echo "no apt-get here; what Debian calls these packages must be installed: $*" >&2
        return
    fi
    local package missing=()
    for package; do
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    local as_root=()
    if [[ $EUID -ne 0 ]]; then
        command -v sudo >/dev/null || { echo "run as root, or install sudo, or install: ${missing[*]}" >&2; return 1; }
        as_root=(sudo)
    fi
    echo "installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# What every build of the library, the standalone platform and the tool needs
PACKAGES_TO_BUILD=(cmake g++ ninja-build libcli11-dev libtomlplusplus-dev)
# What the tests need beyond that
PACKAGES_TO_TEST=(clang libclang-rt-dev clang-format libgtest-dev libgmock-dev locales libgmp-dev libboost-dev pkgconf)
