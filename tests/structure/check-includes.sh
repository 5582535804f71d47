#!/usr/bin/env bash
# Fails when a source includes a header of a folder that its own folder does not stand on.
#
#   check-includes.sh SOURCE-DIRECTORY
set -euo pipefail
shopt -s nullglob
cd "$1"

# Folder, and the folders whose headers it may include besides its own ("Qt" for Qt's).
rules='
assets                  Qt
client                  Qt
platform                Qt
eve_layer               Qt platform assets eve_layer/detail eve_layer/words
eve_layer/detail        Qt
eve_layer/words
widgets                 Qt client eve_layer platform assets eve_layer/words widgets/drawing
widgets/drawing         Qt eve_layer platform eve_layer/words
.                       Qt client eve_layer platform widgets assets
simulator/controller
simulator/board
simulator/server        Qt
simulator/panel         Qt simulator/controller simulator/board simulator/server
'

# Header name -> the folders that have one of that name.
declare -A homes_of
while read -r header; do
    name=${header##*/}
    homes_of[$name]+=" ${header%/*}"
done < <(find . -maxdepth 1 -name '*.h'
         find assets client platform eve_layer widgets simulator -name '*.h')

mistakes=0
checked=0
report() {
    echo "$1" >&2
    mistakes=$((mistakes + 1))
}

check_include() { # folder allowed file line
    local folder=$1 allowed=$2 file=$3 line=$4 header homes home
    if [[ $line =~ ^[[:space:]]*\#include\ *\<(Q[A-Za-z]*)\> ]]; then
        [[ " $allowed " == *" Qt "* ]] || report "$file includes <${BASH_REMATCH[1]}>: $folder does without Qt"
        return
    fi
    [[ $line =~ ^[[:space:]]*\#include\ *\"(.*)\" ]] || return 0
    header=${BASH_REMATCH[1]##*/}
    homes=${homes_of[$header]:-}
    if [ -z "$homes" ]; then
        [[ $header == *.moc ]] || report "$file includes \"$header\", which is in no folder of the program"
        return 0
    fi
    for home in $homes; do
        [[ " $folder $allowed " == *" $home "* ]] && return 0
    done
    report "$file includes \"$header\" of$homes: $folder does not stand on that"
}

while read -r folder allowed; do
    [ -n "$folder" ] || continue
    for file in "$folder"/*.cpp "$folder"/*.h; do
        checked=$((checked + 1))
        while read -r line; do
            check_include "$folder" "$allowed" "$file" "$line"
        done < <(grep '#include' "$file")
    done
done <<<"$rules"

[ "$checked" -gt 100 ] || report "only $checked sources found below $PWD"
[ "$mistakes" -eq 0 ] || exit 1
echo "$checked sources include only what their folders stand on."
