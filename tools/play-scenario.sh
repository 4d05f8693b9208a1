#!/bin/bash
# Plays a scenario of tests/scenarios with the built programs, on a throwaway machine for each Windows version that its
# first line names, and shows where the machine differs from what the file says.
# usage: play-scenario.sh NAME [--write]             writes the file anew, for somebody to read
#        play-scenario.sh NAME --whole [VERSION]     prints it at full length
set -uo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh
file=tests/scenarios/$1
build=${LUMACAP_BUILD:-$PWD/build/release}

versions=${3:-$(sed -n '1s/^# Windows: //p' "$file")}
# For each file; it stands for a disk that is full.
room=$(sed -n '2s/^# Room: \([0-9]*\) KB$/\1/p' "$file")
failed=0
trap machine_stop EXIT
trap 'exit 130' INT
trap '' XFSZ # a write that finds no room fails then, as on Windows
for version in ${versions:?}; do
    machine_start "$1" || exit 1
    steps=$machine_dir/steps
    python3 tools/scenario.py steps "$file" "$version" "$build" >"$steps" || exit 1
    (
        ulimit -f "${room:-unlimited}"
        machine_run "$build/tests/player.exe" "Z:${steps//\//\\}" "$version"
    ) >"$machine_dir/told" || failed=1
    python3 tools/scenario.py "${2:-check}" "$file" "$version" "$machine_dir/told" || failed=1
    machine_stop
done
exit $failed
