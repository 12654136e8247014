# For the scripts that build: `. scripts/packages.sh`, then `need PACKAGE...`.

# What the library, the standalone platform and the tool are built with
PACKAGES_TO_BUILD=(cmake g++ ninja-build libcli11-dev libtomlplusplus-dev libsqlite3-dev libpq-dev)
# What the tests need beyond that
PACKAGES_TO_TEST=(clang libclang-rt-dev libgtest-dev libgmock-dev libboost-dev libgmp-dev pkgconf locales
                  postgresql iverilog gtkwave perl clang-format clang-tidy doxygen)
# What the benchmarks compare with; their answers are tested too
PACKAGES_TO_BENCHMARK=(libbenchmark-dev libabsl-dev libboost-dev libfmt-dev libgmp-dev libsystemc-dev libsqlite3-dev
                       liblmdb-dev perl)

# Installs those of the Debian packages that are missing, as root or with sudo.
need() {
    if ! command -v apt-get >/dev/null; then
        echo "without apt-get nothing is installed; Debian calls what is needed $*" >&2
        return
    fi
    local package missing=()
    for package; do
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    local as_root=()
    if [[ $EUID -ne 0 ]]; then
        as_root=(sudo)
        command -v sudo >/dev/null || { echo "as root, or with sudo, install: ${missing[*]}" >&2; return 1; }
    fi
    echo "installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
