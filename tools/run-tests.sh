#!/bin/bash
# Runs all tests of a preset; the last lines are ctest's summary.
# usage: run-tests.sh PRESET [CTEST-ARGUMENT...]
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh
machine_make_base
echo "Running the tests (about 3 minutes)"
ctest --preset "$@"
