#!/bin/bash
# Runs all tests on a build that counts lines, and tells the share of the program's own lines that ran, file by file.
# Fails below the bound. The report by lines lands in build/coverage/report/.
set -euo pipefail
cd "$(dirname "$0")/.."
bound=95

find build/coverage -name '*.gcda' -delete
# One test at a time: the programs of two would write the same counters. Left out are those whose programs are ended before
# they can count, what runs the delivered programs, and a disk that such a build has no room on.
tools/run-tests.sh coverage --parallel 1 --exclude-regex '^(Interruption|shipping|scenario-full-disk)$'
mkdir -p build/coverage/report
gcovr --root . --object-directory build/coverage --gcov-executable x86_64-w64-mingw32-gcov-posix \
    --filter 'app/' --filter 'wizard/' --filter 'install/' --filter 'uninstall/' --filter 'foundation/' --filter 'mfc/' \
    --html-details build/coverage/report/index.html --fail-under-line $bound --txt
