#!/bin/bash
# Makes the one file that people download, its sum and its manifests for winget, of a checked package: build/dist/.
# usage: [PRODUCT=FOLDER] [URL=ADDRESS] [DIST=FOLDER] dist.sh    of the sample package, if no other is named; the address
# is the file's; the folder is made anew
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/machine.sh
build=${LUMACAP_BUILD:-$PWD/build/release}
dist=$(realpath -m "${DIST:-${LUMACAP_BUILD:-$PWD/build}/dist}")
package=$(realpath "${PRODUCT:-$build/package}")
url=${URL:-http://www.lumacap.example/Lumacap8Setup.exe}

fail() {
    echo "dist.sh: $1" >&2
    exit 1
}

check_package() (
    machine_start dist
    trap machine_stop EXIT
    machine_run "$build/pkgtool.exe" check "Z:${package//\//\\}"
)

# A copy whose files have the time of the commit, so that the same sources always make the same file.
stage_package() {
    mkdir -p "$dist"
    cp -r "$package" "$dist/package"
    find "$dist/package" -exec touch --date="@${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}" {} +
}

write_manifests() {
    local version major minor fix template
    version=$(<"$dist/version")
    IFS=. read -r major minor fix _ <<<"$version"
    mkdir "$dist/winget"
    for template in tools/dist/winget/*.yaml; do
        sed -e "s|@VERSION@|$version|" -e "s|@SHOWN@|$(printf '%d.%02d.%02d' "$major" "$minor" "$fix")|" \
            -e "s|@SUM@|$(cut -d ' ' -f 1 "$dist/SHA256SUMS")|" -e "s|@URL@|${url//&/\\&}|" \
            "$template" >"$dist/winget/${template##*/}"
    done
}

[[ $url =~ ^https?://[^[:space:]\'\|\\]+$ ]] || fail "$url is no address"
[[ $package/ != "$dist"/* ]] || fail "$package lies where the download is made"
rm -rf "$dist"
check_package || fail "$package has to be mended first"
[ -f "$package/setup.exe" ] || fail "$package has no setup.exe"
stage_package
makensis -V2 -WX "-DPACKAGE=$dist/package" "-DPLUGINS=$build/plug-ins" "-DVERSION_FILE=$dist/version" \
    "-DPROGRAM=$dist/Lumacap8Setup.exe" tools/dist/download.nsi
(cd "$dist" && sha256sum Lumacap8Setup.exe >SHA256SUMS)
write_manifests
rm -rf "$dist/package" "$dist/version"
echo "Made ${dist#"$PWD"/}/Lumacap8Setup.exe, $(stat --format=%s "$dist/Lumacap8Setup.exe") bytes"
