#!/bin/bash
# Configures and builds one preset. The release preset leaves build/setup.exe and the sample package build/package/.
# usage: build.sh PRESET
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1

[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
echo "Building $preset (one to three minutes the first time, seconds after that)"
cmake --build --preset "$preset" -- --quiet
if [ "$preset" = release ]; then
    cp -f build/release/setup.exe build/setup.exe
    cp -f build/release/pkgcheck.exe build/pkgcheck.exe
    rm -rf build/package && cp -r build/release/package build/package
fi
