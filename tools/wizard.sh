#!/bin/bash
# Opens the wizard of the sample package on the user's display. What it installs goes to a throwaway Windows machine,
# which ends with it and with the product, if that was started.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh

if [ -z "${DISPLAY:-}" ]; then
    echo 'There is no display to open the wizard on (DISPLAY is empty); make screenshots needs none.' >&2
    exit 1
fi
tools/prerequisites.sh fonts-wine
machine_start wizard shown
trap machine_stop EXIT
machine_use_fonts
echo 'The wizard opens in a few seconds. Whatever it installs goes when it ends.'
cp -r build/package "$WINEPREFIX/drive_c/Package"
cd "$WINEPREFIX/drive_c/Package"
code=0
machine_run 'C:\Package\setup.exe' || code=$?
until machine_is_idle; do sleep 0.5; done
exit $code
