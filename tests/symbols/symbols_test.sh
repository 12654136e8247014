#!/usr/bin/env bash
# Compares what libbig.so exports and imports with the lists kept beside this script, and checks that
# a program can put its own definition of a platform operation in front.
# usage: symbols_test.sh LIBBIG LIBRARY...
set -uo pipefail
here=${0%/*}
status=0

for which in exports imports; do
    if ! "$here/list_symbols" $which "$1" | diff -u --label "$here/libbig.$which" --label "$1" "$here/libbig.$which" -; then
        echo "libbig.so $which other symbols than $here/libbig.$which lists. If that is meant, run"
        echo "    cmake --build BUILD_FOLDER --target update_symbols"
        status=1
    fi
done

for library; do
    if readelf -d "$library" | grep SYMBOLIC; then
        echo "$library is linked with -Bsymbolic"
        status=1
    fi
    if readelf --dyn-syms -W "$library" | grep PROTECTED; then
        echo "$library has protected symbols"
        status=1
    fi
done
exit $status
