#!/bin/bash
# Installs the sample package silently on a throwaway Windows machine and shows what came to stand; then uninstalls,
# restarts the machine and shows what is left.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh

heading() { printf '\n== %s\n' "$1"; }
show() { python3 tools/show-machine.py "$@"; }

export_registry() {
    local root
    for root in HKEY_LOCAL_MACHINE HKEY_CURRENT_USER; do
        machine_run regedit /E "Z:$machine_dir/export-$root.reg" "$root"
    done
    for root in HKEY_LOCAL_MACHINE HKEY_CURRENT_USER; do
        iconv -f UTF-16 -t UTF-8 "$machine_dir/export-$root.reg"
    done | iconv -f UTF-8 -t UTF-16LE | { printf '\xff\xfe'; cat; } >"$machine_dir/$1.reg"
}

list_files() {
    (cd "$WINEPREFIX/drive_c" && find . -not -path './windows/*' -o -path './windows/temp/*' |
        sed 's|^\.|C:|; s|/|\\|g' | sort) >"$machine_dir/$1.files"
}

run_and_tell() {
    local code=0
    heading "$*"
    machine_run "$@" || code=$?
    echo "  exit code $code"
    machine_wait_idle
}

machine_start demo
trap machine_stop EXIT
echo 'A fresh Windows machine; the package lies in C:\Package'
cp -r build/package "$WINEPREFIX/drive_c/Package"
export_registry before
list_files before

run_and_tell 'C:\Package\setup.exe' -s -autostart
export_registry installed

heading 'The product folder'
show tree "$WINEPREFIX/drive_c/Program Files/Lumacap 8"
heading 'Its log, LumUnInst.log'
tr -d '\r' <"$WINEPREFIX/drive_c/Program Files/Lumacap 8/LumUnInst.log" | sed 's/^/  /'
heading 'Links'
show links "$WINEPREFIX/drive_c/ProgramData" "$WINEPREFIX/drive_c/users"
heading 'Registry values written, those of the product'\''s own first run among them'
show registry "$machine_dir/before.reg" "$machine_dir/installed.reg"
heading 'To be done at the next boot'
show boot "$machine_dir/installed.reg"

run_and_tell 'C:\Program Files\Lumacap 8\LumUnInst.exe'
export_registry uninstalled
heading 'To be done at the next boot'
show boot "$machine_dir/uninstalled.reg"

heading 'The machine restarts; what is left of it all: files first, then the registry'
echo '  (empty keys may stay: those that the product made itself, and a list that other programs share)'
machine_restart
export_registry restarted
list_files restarted
show files "$machine_dir/before.files" "$machine_dir/restarted.files"
show registry "$machine_dir/before.reg" "$machine_dir/restarted.reg"
