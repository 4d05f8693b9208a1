#!/bin/bash
# Makes the one file that people download, its sum and its manifests for winget, of a checked package: build/dist/.
# usage: [PRODUCT=FOLDER] [URL=ADDRESS] [DIST=FOLDER] dist.sh    of the sample package, if no other is named; the address
# is the file's, the folder where all goes
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh
build=${LUMACAP_BUILD:-$PWD/build/release}
dist=$(realpath -m "${DIST:-${LUMACAP_BUILD:-$PWD/build}/dist}")
package=$(realpath -m "${PRODUCT-$build/package}" 2>/dev/null) || package=
url=${URL-http://www.lumacap.example/Lumacap8Setup.exe}

fail() {
    echo "dist.sh: $1" >&2
    exit 1
}

check_package() (
    machine_start dist
    trap machine_stop EXIT
    machine_run "$build/pkgtool.exe" check "Z:${package//\//\\}" || { cat "$machine_dir/stderr" >&2; exit 1; }
)

# A copy whose files have the time of the commit, so that the same sources always make the same file.
stage_package() {
    cp -rL "$package" "$stage/package"
    chmod -R u+w "$stage" # or the stage couldn't go
    find "$stage/package" -exec touch --date="@$time" {} +
}

write_manifests() {
    local major minor fix template
    IFS=. read -r major minor fix _ <<<"$version"
    mkdir "$stage/winget"
    for template in tools/dist/winget/*.yaml; do
        sed -e "s|@VERSION@|$version|" -e "s|@SHOWN@|$(printf '%d.%02d.%02d' "$major" "$minor" "$fix")|" \
            -e "s|@SUM@|$(cut -d ' ' -f 1 "$stage/SHA256SUMS")|" -e "s|@URL@|${url//&/\\&}|" \
            "$template" >"$stage/winget/${template##*/}"
    done
}

[ -d "$package" ] || fail "'${PRODUCT-$package}' is no folder"
[[ $url =~ ^https?://[^[:space:]\'\|\\]+$ ]] || fail "'$url' is no address"
[[ $dist/ != "$package"/* ]] || fail "the download can't be made in its own package"
# C:\Users\NAME\AppData\Local\Temp\ns12345.tmp\package\ stands before each path while it is unpacked.
long=$(cd "$package" && find -L . -regextype posix-extended -regex '\./.{191,}' -printf %P -quit)
[ -z "$long" ] || fail "$long is too long to be unpacked"
check_package || fail "$package has to be mended first"
for name in setup.exe agreement.txt; do
    [ -f "$package/$name" ] || fail "$package has no $name"
done
time=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null)} ||
    fail 'without git SOURCE_DATE_EPOCH has to give a time, in seconds'
[[ $time =~ ^[0-9]+$ ]] || fail "'$time' is no time in seconds"
mkdir -p "$dist/winget"
stage=$(mktemp -d --tmpdir="$dist")
trap 'rm -rf "$stage"' EXIT
stage_package
makensis -V2 -WX "-DPACKAGE=$stage/package" "-DPLUGINS=$build/plug-ins" "-DVERSION_FILE=$stage/version" \
    "-DPROGRAM=$stage/Lumacap8Setup.exe" tools/dist/download.nsi
version=$(<"$stage/version")
(cd "$stage" && sha256sum Lumacap8Setup.exe >SHA256SUMS)
write_manifests
# An earlier download stays until this one stands whole.
mv -T "$stage/Lumacap8Setup.exe" "$dist/Lumacap8Setup.exe"
mv "$stage/SHA256SUMS" "$dist"
mv "$stage/winget"/* "$dist/winget"
echo "Made ${dist#"$PWD"/}/Lumacap8Setup.exe of version $version, $(stat --format=%s "$dist/Lumacap8Setup.exe") bytes"
