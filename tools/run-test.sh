#!/bin/bash
# Runs one part of the test program in a throwaway machine of its own. A filter that meets no test is a failure.
# usage: run-test.sh NAME TEST-PROGRAM ARGUMENT...
set -uo pipefail
. "$(dirname "$0")/machine.sh"
name=$1
program=$2
shift 2

machine_start "$name" || exit 1
trap machine_stop EXIT
export LUMACAP_THROWAWAY_MACHINE=1
# A path that names no drive leads to the machine's own.
cd "$WINEPREFIX/drive_c" || exit 1
machine_run "$program" "$@" --gtest_brief=1 >"$machine_dir/report"
code=$?
cat "$machine_dir/report"
if ! grep -qE '\[  PASSED  \] [1-9]' "$machine_dir/report" && [ $code -eq 0 ]; then
    echo "no test ran for $name"
    exit 1
fi
exit $code
