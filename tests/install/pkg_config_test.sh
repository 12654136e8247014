#!/bin/sh
# Builds a program of the folder consumer with nothing but a compiler and pkg-config, and runs it.
# usage: pkg_config_test.sh PREFIX PROGRAM OUTPUT COMPILER [FLAG...]
set -eu
prefix=$1 program=$2 output=$3
shift 3
pc=$(find "$prefix" -name big.pc)
export PKG_CONFIG_PATH="${pc%/*}"
# The flags of pkg-config are words: they are split on purpose.
"$@" -std=c++17 "${0%/*}/consumer/$program.cpp" -o "$output" $(pkg-config --cflags --libs big)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir big) "$output"
