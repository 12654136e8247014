#!/bin/sh
# The script that runs the benchmarks, on some of them.
# usage: run_test.sh BUILD_FOLDER
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$source/bench/run" --build "$1" --output "$folder" --quick --megabytes 1 \
    --only '^(3/long64_to_text/mixed|9/hex_to_bin/(8|64)$|17/)' >"$folder/table"
cat "$folder/table"
grep -Eq '^3 +long64 to text +mixed .* 0\.95 x to_string +[0-9.]+ +(yes|no) ' "$folder/table"
grep -Eq '^17 +bigq time +1MB .* 0\.2 x awk, 0\.2 x numfmt ' "$folder/table"
grep -Eq '^17 +bigq radix +1MB ' "$folder/table"
grep -q '"who" : "ours"' "$folder/results.json"
grep -q 'From hexadecimal' "$folder/from_hex.svg"
grep -q '^</svg>$' "$folder/from_hex.svg"
