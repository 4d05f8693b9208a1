#!/bin/bash
# Measures the program against plain counterparts, in time, memory and size, on a throwaway Windows machine, and writes
# build/bench/report.md with a plot. Fails if a bound is missed. usage: bench.sh [PAIRS]
set -euo pipefail
cd "$(dirname "$0")/.."
tools/prerequisites.sh gnuplot-nox
. tools/machine.sh
pairs=${1:-9}
bench=$PWD/build/bench
started=$SECONDS

tell() { printf '%4d s  %s\n' $((SECONDS - started)) "$1"; }

# usage: run WHAT NUMBER...   in the folder C:\bench; results are appended
run() {
    tell "$*"
    machine_run "$PWD/build/release/bench/measure.exe" "$1" 'C:\bench' "${@:2}" >>"$bench/results.tsv" ||
        { cat "$machine_dir/stderr"; exit 1; }
}

# The same with a folder of its own, which goes afterwards.
measure() {
    run "$@"
    rm -rf "$WINEPREFIX/drive_c/bench"
}

# The sources as they stand here, built in another folder from nothing, with no cache of compilations.
build_again() {
    tell 'a second build in another folder (about two minutes)'
    mkdir -p "$bench/second"
    git ls-files -z --cached --others --exclude-standard | tar --null -cf - -T - | tar -xf - -C "$bench/second"
    (
        cd "$bench/second"
        unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
        export CCACHE_DISABLE=1
        cmake --preset release >/dev/null
        cmake --build --preset release --target setup sample_package pkgtool launch -- --quiet
    )
}

echo 'Benchmark: about 20 minutes, 30 on a busy machine'
rm -rf "$bench"
mkdir -p "$bench"
tools/build.sh release
cmake --build --preset release --target bench -- --quiet
build_again

# In memory where there is room: a disk's pace would be measured instead of the programs'.
if [ "$(df --output=avail -B1M /dev/shm | tail -1)" -gt 4096 ]; then
    machine_root=/dev/shm/lumacap-bench-$$
fi
machine_start bench
trap 'machine_stop; [ "$machine_root" = "$PWD/build/machines" ] || rm -rf "$machine_root"' EXIT
programs=("Z:$PWD/build/package" "Z:$PWD/build/release/bench")
for files in 200 400 1000; do measure files $files 3; done
measure files 2000 "$pairs"
measure calls 2000
for lines in 25000 50000; do measure lines $lines 3; done
# Long and short lists take turns, since each is measured against the other.
for _ in $(seq "$pairs"); do
    measure lines 10000 1
    measure lines 100000 1
done
for lines in 10000 100000; do measure list-memory "${programs[0]}" $lines; done
measure memory "${programs[@]}"
measure processes 2000 "$pairs" "${programs[@]}"
run installers-package 2000 "${programs[0]}"
makensis -V2 -WX -DPACKAGE="$WINEPREFIX/drive_c/bench/package" -DPROGRAM="$WINEPREFIX/drive_c/bench/other.exe" \
    bench/other.nsi
run installers 2000 "$pairs"

# As its maker would ship it: the list is that of its folder.
tell 'the download of both packages (about a minute)'
cp -rn build/package/. "$WINEPREFIX/drive_c/bench/package"
machine_run "$PWD/build/release/pkgtool.exe" list --force 'C:\bench\package'
DIST=$bench/sample tools/dist.sh
(cd "$bench/second" && LUMACAP_BUILD=$PWD/build/release DIST=$bench/again tools/dist.sh)
DIST=$bench/download PRODUCT=$WINEPREFIX/drive_c/bench/package tools/dist.sh
cp "$bench/download/Lumacap8Setup.exe" "$WINEPREFIX/drive_c/bench/download.exe"
measure download 2000 "$pairs" "${programs[1]}" "Z:$PWD/build/release/pkgtool.exe"

tell 'planted libraries'
planted=0
ctest --preset release -R '^PlantedLibrary$' >"$bench/planted.txt" || planted=1
tell 'report'
python3 tools/bench-report.py build/setup.exe "$bench/second/build/release/setup.exe" "$planted" "$bench"
