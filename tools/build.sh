#!/bin/bash
# Configures and builds one preset, or some targets of it. The release preset as a whole leaves build/setup.exe and the
# sample package build/package/.
# usage: build.sh PRESET [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
echo "Building $preset (one to three minutes the first time, seconds after that)"
cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet
if [ "$preset" = release ] && [ $# -eq 0 ]; then
    cp -f build/release/setup.exe build/setup.exe
    cp -f build/release/pkgtool.exe build/pkgtool.exe
    rm -rf build/package && cp -r build/release/package build/package
fi
