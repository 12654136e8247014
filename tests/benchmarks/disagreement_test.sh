#!/bin/sh
# usage: disagreement_test.sh PROGRAM
set -u
failed=0
expect() { # STATUS TEXT FILTER
    output=$("$program" --benchmark_min_time=0 --benchmark_filter="$3" 2>&1)
    status=$?
    if [ $status -ne "$1" ] || ! printf '%s\n' "$output" | grep -qF "$2"; then
        printf 'expected status %s and "%s", got status %s and\n%s\n' "$1" "$2" $status "$output"
        failed=1
    fi
}
program=$1
# Nobody in a comparison with a wrong answer is timed.
expect 1 "1/square/small/ours ERROR OCCURRED: 'input 2: ours is 9, wrong has 10'" '^1/.*ours'
expect 1 "ERROR OCCURRED: 'input 2: ours is 9, wrong has 10'" .
expect 0 "2/square/small/right" '^2/'
expect 1 "Failed to match any benchmarks" '^3/'
exit $failed
