#!/usr/bin/env bash
# Fails when the style check leaves out a shell script: a file named so, or one that says so in its
# first line.
#
#   check-scripts.sh SOURCE-DIRECTORY
set -euo pipefail
cd "$1"

checked=$(packaging/check-style.sh --scripts)

isScript() {
    local first=
    IFS= read -r -n 100 first <"$1" || true # no line end, no line
    [[ $1 == *.sh || $first =~ ^#!.*[/\ ](ba|da)?sh([^a-z]|$) ]]
}

mistakes=0
scripts=0
while read -r file; do
    file=${file#./}
    isScript "$file" || continue
    scripts=$((scripts + 1))
    grep -qxF "$file" <<<"$checked" && continue
    echo "packaging/check-style.sh leaves out $file" >&2
    mistakes=$((mistakes + 1))
done < <(find . \( -path ./.git -o -path ./build \) -prune -o -type f -size -100k -print)

if [ "$scripts" -lt 10 ]; then
    echo "only $scripts scripts found below $PWD" >&2
    mistakes=$((mistakes + 1))
fi
[ "$mistakes" -eq 0 ] || exit 1
echo "The style check reads all $scripts scripts."
