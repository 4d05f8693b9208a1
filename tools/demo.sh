#!/bin/bash
# Plays the tests' first scenario on a throwaway Windows machine, and prints at full length what each step changed there.
set -euo pipefail
cd "$(dirname "$0")/.."
cat <<'EOF'

A fresh Windows 10, with the sample package in C:\Package. A script installs the product without a question and has it
started; then, while it runs, it is removed; then the machine restarts.

Below each command stands all that it changed on the machine, in its files and in its registry:

    +          has come
    -          has gone
    =          where a file's content comes from, if that isn't the package's file of the same name
    ->         what a link starts, and in which folder
    started:   a program that the setup started, and in which folder; with -regonly the product enters itself in the
               registry, with -unregonly it takes a part of that back
    boot:      what the next start of the machine is to do; - is a deletion
    exit code  told where it isn't 0, with which verify ends if all is as it should be

Behind LumUnInst.log stand the lines that it has more than the package's list. A registry key without values is told
only while no other key is in it.

EOF
tools/play-scenario.sh first-install --whole win10
