#!/bin/sh
# Installs a build into an emptied prefix; with options, configures and builds it before.
# usage: install.sh PREFIX BUILD [OPTION...]
set -eu
prefix=$1 build=$2
shift 2
rm -rf "$prefix"
if [ $# -gt 0 ]; then
    cmake -S "${0%/*}/../.." -B "$build" -DBUILD_TESTING=OFF "$@"
    cmake --build "$build" --parallel 2
fi
cmake --install "$build" --prefix "$prefix"
