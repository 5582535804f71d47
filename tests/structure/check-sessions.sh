#!/usr/bin/env bash
# Fails when a session is no system test, a stored picture is compared by no session, or
# the page of the screens shows one that is not stored.
#
#   check-sessions.sh SOURCE-DIRECTORY
set -euo pipefail
cd "$1/tests/system"

mistakes=0
report() {
    echo "$1" >&2
    mistakes=$((mistakes + 1))
}

tests=$(sed -n 's/^ *add_system_test(\([^ )]*\).*/\1/p' CMakeLists.txt)
sessions=0
for session in *.session; do
    grep -qxF "${session%.session}" <<<"$tests" || report "$session is no system test: nobody plays it"
    sessions=$((sessions + 1))
done

shots=$(sed -n 's/^ *screenshot  *\([^ #]*\).*/\1/p' ./*.session)
pictures=0
for picture in pictures/*; do
    name=$(basename "$picture" .png)
    grep -qxF "$name" <<<"$shots" || report "$picture is in no session: nothing is compared with it"
    pictures=$((pictures + 1))
done

shown=$(grep -o 'pictures/[^)]*\.png' ../../docs/screens.md)
while read -r picture; do
    [ -e "$picture" ] || report "docs/screens.md shows $picture, which there is not"
done <<<"$shown"

if [ "$sessions" -lt 20 ] || [ "$pictures" -lt 20 ]; then
    report "only $sessions sessions and $pictures pictures found in $PWD"
fi
[ "$mistakes" -eq 0 ] || exit 1
echo "All $sessions sessions are system tests, and they compare all $pictures pictures."
