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
