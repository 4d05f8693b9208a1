#!/bin/bash
# Lets many more hostile lists and command lines loose than the tests do, one command line for four lists. Each has a
# number, which a failure tells.
# usage: LISTS=n FIRST=n hostile.sh
set -euo pipefail
cd "$(dirname "$0")/.."
export LUMACAP_HOSTILE_LISTS=${LISTS:-200000} LUMACAP_HOSTILE_FIRST=${FIRST:-20001}
export LUMACAP_HOSTILE_SWITCHES=$((LUMACAP_HOSTILE_LISTS / 4))
export LUMACAP_BUILD=$PWD/build/release LUMACAP_SOURCE=$PWD
echo "Walking $LUMACAP_HOSTILE_LISTS lists and $LUMACAP_HOSTILE_SWITCHES command lines from number $LUMACAP_HOSTILE_FIRST on (about 5 minutes for 200,000)"
tools/run-test.sh Hostile build/release/tests/setup_tests.exe '--gtest_filter=Hostile*'
