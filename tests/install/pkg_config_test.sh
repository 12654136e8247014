#!/bin/sh
# Builds a program of the folder consumer with nothing but a compiler and pkg-config, and runs it.
# usage: pkg_config_test.sh PREFIX MODULE PROGRAM OUTPUT COMPILER [FLAG...]
set -eu
prefix=$1 module=$2 program=$3 output=$4
shift 4
pc=$(find "$prefix" -name big.pc)
export PKG_CONFIG_PATH="${pc%/*}"
# The flags of pkg-config are words: they are split on purpose.
"$@" -std=c++17 "${0%/*}/consumer/$program.cpp" -o "$output" $(pkg-config --cflags --libs "$module")
LD_LIBRARY_PATH=$(pkg-config --variable=libdir "$module") "$output"
