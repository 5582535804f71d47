#!/usr/bin/env bash
# Tries out the tests: changes the program in small ways, one at a time, and tells which changes no
# test notices. Not a part of ./test.sh, for it takes hours; run it on what you have worked on.
#
#   tests/mutation/run.sh [OPTION]... [FILE|FOLDER|FILE:LINE|FILE:LINE..LINE]...
#
# Without files, the whole application. Each change (a mutant) is made in a copy of the tree below
# build/mutation, built without optimisation and tested with the test programs that the file has a
# part in, its own folder's first, until one fails. The verdicts:
#
#   killed           a test failed
#   timed out        a test program took several times as long as it should: noticed, too
#   survived         all tests passed: a test is missing, or the change makes no difference
#   did not compile  tells nothing
#
# The changes: constants one up or down, < to <=, == to !=, + to -, && to || and the like, signs and
# negations dropped, conditions negated, the choices of ?: and true and false exchanged, std::min for
# std::max, neighbouring arguments swapped, statements dropped. Comments, includes, debug output,
# the texts of assertions and generated sources are left alone. Mutants that are known to make no
# difference are listed in equivalent.txt and not tried.
#
#   --list           show the mutants and try none
#   --sample N       only N mutants of each file, picked at random
#   --seed N         another pick (1 if not given)
#   --from A..B      only those of lines A to B; --from FILE:LINE is the same as the plain argument
#   --own            only the tests of the file's own folder; quicker, with more survivors
#   --system         try survivors on the sessions of tests/system, too (minutes for each)
#   --minutes N      stop after N minutes of trying mutants
#   --resume         go on with the run that stopped, or was interrupted
#   --survivors      try the survivors of the last run again
#   --report         show the report of the last run again
#
# The report is also left in build/mutation/report.txt. The exit status is 1 if a mutant survived.
# Tests with a server need TCP port 9800 to be free, so run nothing beside this. A mutant may do what
# the program never would; what it takes of memory and disk is limited.
set -euo pipefail
cd "$(dirname "$0")/../.."

for argument in "$@"; do
    case "$argument" in
        --help | -h) sed -n '2,/^set /{/^set /d;s/^# \{0,1\}//;p}' "$0"; exit 0 ;;
    esac
done

PYTHONDONTWRITEBYTECODE=1 exec python3 tests/mutation/worker.py "$@"
