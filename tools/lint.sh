#!/bin/bash
# Format, warnings as errors, static analysis. Fails on the first kind of finding.
set -euo pipefail
cd "$(dirname "$0")/.."

folders=(app wizard install uninstall foundation mfc sample tests bench tools)
mapfile -t sources < <(git ls-files -- "${folders[@]/%//*.cpp}")
mapfile -t headers < <(git ls-files -- "${folders[@]/%//*.h}")

echo "Format of ${#sources[@]} sources and ${#headers[@]} headers"
clang-format --dry-run --Werror "${sources[@]}" "${headers[@]}"

echo "Suites without an entry"
for test in tests/*/*.cpp; do
    name=$(basename "$test" .cpp)
    if grep -nHE '^TEST(_F)?\(' "$test" | grep -v "(${name%Test},"; then exit 1; fi
    if [ "$name" = "${name%Test}" ] && grep -nHE '^TEST(_F)?\(' "$test"; then exit 1; fi
done

echo "Platform headers ahead of the framework"
# A file may meet the framework by way of a header of ours.
mapfile -t own < <(git ls-files -- {app,wizard,install,uninstall,foundation,mfc}/'*.'{cpp,h})
awk '
function meets(file, line, met, part) {
    if (file in done) return done[file]
    while ((getline line < file) > 0) {
        if (line ~ /^#include <(afx|atl)/) met = 1
        else if (line ~ /^#include "/) { split(line, part, "\""); if (meets(part[2])) met = 1 }
        else if (line ~ /^#include <windows\.h>/ || (!met && line ~ /^#include </ && line !~ standard)) {
            print file ": " line
            bad = 1
        }
    }
    close(file)
    return done[file] = met
}
BEGIN {
    standard = "<([a-z_]+|(assert|ctype|errno|float|limits|math|std[a-z]+|string|time|wchar|wctype)\\.h)>"
    done["mfc/afx.h"] = 1
    for (i = 1; i < ARGC; i++) meets(ARGV[i])
    exit bad
}' "${own[@]}"

echo "Compiler warnings as errors"
tools/build.sh release >/dev/null

echo "cppcheck (about half a minute)"
cppcheck --quiet --error-exitcode=1 --std=c++17 --platform=win64 --language=c++ -j 2 \
    --enable=warning,performance,portability --inline-suppr --library=windows --library=googletest \
    --suppressions-list=tools/cppcheck-suppressions.txt -I . -I mfc "${sources[@]}"

echo "clang-tidy (about four minutes)"
# The compiler of the analysis isn't the one of the build: it gets the latter's target and library headers.
gcc_include=/usr/lib/gcc/x86_64-w64-mingw32/12-posix/include
tidy_args=(--extra-arg=--target=x86_64-w64-windows-gnu --extra-arg=-Qunused-arguments
    --extra-arg=-Wno-inconsistent-missing-override --extra-arg=-Wno-string-concatenation
    --extra-arg=-isystem"$gcc_include/c++" --extra-arg=-isystem"$gcc_include/c++/x86_64-w64-mingw32"
    --extra-arg=-isystem/usr/x86_64-w64-mingw32/include)
# Left out are the sample, which isn't the program's, and what plays one of Windows' own libraries: another compiler's
# parser refuses to export its names.
printf '%s\n' "${sources[@]}" | grep -vE '^(sample/|tests/end-to-end/planted/Library)' |
    xargs -P 2 -n 6 clang-tidy --quiet -p build/release "${tidy_args[@]}" 2>build/clang-tidy.err
echo "No findings"
