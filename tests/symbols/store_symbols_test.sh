#!/usr/bin/env bash
# Compares what libbig_store.so exports with the list kept beside this script.
# usage: store_symbols_test.sh LIBRARY
set -uo pipefail
here=${0%/*}
if ! "$here/list_symbols" exports "$1" | diff -u --label "$here/libbig_store.exports" --label "$1" "$here/libbig_store.exports" -; then
    echo "libbig_store.so exports other symbols than $here/libbig_store.exports lists. If that is meant, run"
    echo "    cmake --build BUILD_FOLDER --target update_symbols"
    exit 1
fi
