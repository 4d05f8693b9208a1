#!/bin/bash
# Ends installs, upgrades and removals at many more points than the tests do every day, and tells how many. The
# environment's LUMACAP_INTERRUPTIONS, 300 without it, bounds the points of each: up to seven in ten of it are spread over
# the changes to the machine, each of which is met where they are fewer. Installs and removals are ended also by time, at
# three in ten of it; upgrades aren't.
set -uo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh
machine_make_base || exit 1
export LUMACAP_BUILD=$PWD/build/release LUMACAP_SOURCE=$PWD LUMACAP_INTERRUPTIONS=${LUMACAP_INTERRUPTIONS:-300}
echo "Ending installs, upgrades and removals at up to $LUMACAP_INTERRUPTIONS points each (about 10 minutes for 300)"
failed=0
for suite in InterruptedInstall InterruptedUpgrade InterruptedRemoval; do
    echo "$suite:"
    tools/run-test.sh $suite build/release/tests/setup_tests.exe "--gtest_filter=$suite*" || failed=1
done
exit $failed
