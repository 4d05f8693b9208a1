#!/bin/bash
# Goes the way of docs/shipping.md with the sample's folder, where each command prints what the page says; then with many
# files of a stranger besides, down to the removal of what the download installed.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/machine.sh
machine_start shipping
trap machine_stop EXIT
export HOME=$machine_dir/home
export DIST=$HOME/dist
unset MAKEFLAGS MAKELEVEL # of a make that runs this
mkdir "$HOME"
cp -r "$LUMACAP_BUILD/package" "$HOME/Lumacap"
rm "$HOME/Lumacap/LumUnInst.log"

# Sizes and the home folder are the machine's own, and a build may have something to tell.
even_out() { sed -E '/^(ninja|Building|--)/d; s/^ *//; s/[0-9]+ bytes/N bytes/; s/(in|Made) .*[\\/]/\1 /'; }

play() {
    sed -n 's/^ *\$ //p' docs/shipping.md | while read -r command; do
        echo "\$ $command"
        bash -o pipefail -c "${command/build\//$LUMACAP_BUILD/}" </dev/null | tr -d '\r'
    done
}

diff <(sed -n '/^ \{8\}/p' docs/shipping.md | even_out) <(play | even_out)

# Names that Debian's disks hold, and those of Windows don't.
touch "$HOME/Lumacap/"{'aux .c',console,CONSOLE,'what?',Lang/con,'a\b'}
diff <(wine "$LUMACAP_BUILD/pkgtool.exe" list "$HOME/Lumacap" --force 2>&1 | tr -d '\r') - <<END
a\b: can't be said in a list: nothing is found under its name
aux .c: can't be said in a list: its name is a device's
console: can't be said in a list: another name differs from it in its case only
what?: can't be said in a list: its name has the character ?
Lang\con: can't be said in a list: its name is a device's
pkgtool: no list was written in $HOME/Lumacap
END
rm "$HOME/Lumacap/"{'aux .c',CONSOLE,'what?',Lang/con,'a\b'}

cp -r /usr/share/nsis "$HOME/Lumacap/A stranger's folder"
wine "$LUMACAP_BUILD/pkgtool.exe" list --force "$HOME/Lumacap"
PRODUCT=$HOME/Lumacap URL='http://x.example/?a&b' tools/dist.sh
grep -Fx "  InstallerUrl: 'http://x.example/?a&b'" "$DIST"/winget/*.installer.yaml
PRODUCT=$HOME/Lumacap DIST=$HOME/again tools/dist.sh
cmp "$DIST/Lumacap8Setup.exe" "$HOME/again/Lumacap8Setup.exe"
machine_run "$DIST/Lumacap8Setup.exe" -install -s /S "$(printf 'x%.0s' {1..30000})"
machine_run "$LUMACAP_BUILD/pkgtool.exe" verify "$HOME/Lumacap"
# A link that gets too long ends the setup in the middle, and the download hands on its exit code, of which 9 is left here.
group='C:\ProgramData\Microsoft\Windows\Start Menu\Programs'
printf 'Shell Link: %s\\%0190d\\x.lnk\r\n' "$group" 0 >>"$WINEPREFIX/drive_c/Program Files/Lumacap 8/LumUnInst.log"
code=0
machine_run "$DIST/Lumacap8Setup.exe" -install -s /S || code=$?
[ $code = 9 ]
machine_run 'C:\Program Files\Lumacap 8\LumUnInst.exe'
machine_wait_idle
machine_run "$LUMACAP_BUILD/pkgtool.exe" verify --removed "$HOME/Lumacap"

# What can't become a download is refused, and the earlier one stays.
refused() {
    if env "${@:2}" tools/dist.sh >"$HOME/told" 2>&1; then return 1; fi
    grep -F "$1" "$HOME/told"
    (cd "$DIST" && sha256sum --check --quiet SHA256SUMS)
}

refused "'' is no folder" PRODUCT=
refused "' is no address" URL='https://x.example/a b'
export PRODUCT=$HOME/Lumacap
refused 'in its own package' DIST="$PRODUCT"
touch "$PRODUCT/$(printf '%0191d' 0)"
refused 'is too long to be unpacked'
rm "$PRODUCT/"{000*,setup.exe}
refused 'has no setup.exe'
rm "$PRODUCT/agreement.txt"
cp "$LUMACAP_BUILD/setup.exe" "$PRODUCT"
wine "$LUMACAP_BUILD/pkgtool.exe" list --force "$PRODUCT"
refused 'has no agreement.txt'
rm "$PRODUCT/LumUnInst.exe"
refused 'has to be mended first'
