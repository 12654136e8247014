#!/bin/sh
# Checks the format of every source file of the repository, which is the current folder.
# usage: format_test.sh CLANG_FORMAT
find . -path './build*' -prune -o '(' -name '*.cpp' -o -name '*.h' ')' -print | xargs "$1" --dry-run -Werror
