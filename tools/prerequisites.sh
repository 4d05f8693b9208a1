#!/bin/bash
# Installs what is missing of the build and test tools, and of the packages named, from Debian's own packages.
# usage: prerequisites.sh [PACKAGE...]
set -euo pipefail

packages=(cmake ninja-build g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine wine64 xvfb xauth googletest
    libcli11-dev nlohmann-json3-dev nsis python3-yaml
    clang-format clang-tidy cppcheck gcovr python3 git fonts-dejavu-core procps libc-bin
    "$@")

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing (about 40 seconds): ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get -q update >/dev/null
"${as_root[@]}" apt-get -q install -y --no-install-recommends "${missing[@]}" >/dev/null
