#!/usr/bin/env bash
# Fails when a source includes a header of a folder that its own folder does not stand on.
#
#   check-includes.sh SOURCE-DIRECTORY
set -euo pipefail
shopt -s nullglob
cd "$1"

# The parts of the controller model, of its coprocessor, and of panelsim.
c=simulator/controller
p=$c/coprocessor
s=simulator/panel

# Folder, and the folders whose headers it may include besides its own ("Qt" for Qt's).
rules="
assets                  Qt
client                  Qt
platform                Qt
eve_layer               Qt platform assets eve_layer/detail eve_layer/words
eve_layer/detail        Qt
eve_layer/words
widgets                 Qt client eve_layer platform assets eve_layer/words widgets/drawing
widgets/drawing         Qt eve_layer platform eve_layer/words
supervision
.                       Qt client eve_layer platform widgets assets supervision
$c/base
$c/words                $c/base
$c/memory               $c/base
$c/clock                $c/base $c/memory
$c/touch                $c/base $c/memory
$c/flash
$c/rom                  $c/base $c/words $c/memory
$c/text                 $c/base $c/words $c/memory $c/rom
$c/host                 $c/memory $c/text
$c/graphics             $c/base $c/words $c/memory $c/rom
$c/history              $c/base $c/words $c/memory $c/graphics
$p/machine              $c/base $c/words $c/memory $c/clock $c/flash
$p/painting             $c/base $c/words $c/memory $c/rom
$p/unpacking
$p/animations           $c/base $c/words $c/memory $c/touch $p/machine $p/painting
$p/commands             $c/base $c/words $c/memory $c/touch $c/flash $c/rom $p/machine $p/painting $p/unpacking $p/animations
$p                      $c/base $c/words $c/memory $c/flash $c/text $p/machine $p/painting $p/commands
$c                      $c/base $c/words $c/memory $c/clock $c/touch $c/flash $c/rom $c/text $c/host $c/graphics $c/history $p $p/machine
simulator/board         simulator/board/module
simulator/board/module
simulator/server        Qt
simulator/server/check  Qt
$s/base                 Qt
$s/module               Qt $c $c/base $c/memory simulator/board $s/base
$s/trace                Qt $c $c/base $c/words $c/memory $c/text $s/module
$s/inspect              Qt $c $c/base $c/words $c/memory $c/text $c/history $s/base $s/module
$s/faults               Qt $c $c/base $c/memory simulator/board simulator/server $s/base $s/module
$s/rig                  Qt $c $c/base simulator/board simulator/server $s/base $s/module $s/trace $s/inspect $s/faults
$s/session/commands     Qt $c $c/base $c/memory simulator/board simulator/server $s/base $s/module $s/inspect $s/faults $s/rig
$s/session              Qt $c $c/base simulator/server $s/base $s/module $s/faults $s/rig $s/session/commands
$s/record               Qt $c $s/base $s/module $s/rig
$s/window               Qt $c $c/base $s/base $s/module $s/inspect $s/faults $s/rig $s/record
$s/remote               Qt $c $c/base $s/base $s/module $s/rig
$s                      Qt $s/base $s/module $s/inspect $s/faults $s/remote $s/rig $s/session $s/session/commands $s/window
"

# More sources than this in one folder of the virtual instrument are more than one part.
most_sources=30

# Header name -> the folders that have one of that name.
declare -A homes_of
while read -r header; do
    name=${header##*/}
    homes_of[$name]+=" ${header%/*}"
done < <(find . -maxdepth 1 -name '*.h'
         find assets client platform eve_layer widgets supervision simulator -name '*.h')

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

declare -A allowed_in
while read -r folder allowed; do
    [ -z "$folder" ] || allowed_in[$folder]=" $allowed "
done <<<"$rules"

check_folder() { # folder allowed
    local folder=$1 allowed=$2 other sources
    for other in $allowed; do
        [[ ${allowed_in[$other]:-} != *" $folder "* ]] || report "$folder and $other need each other"
    done
    sources=$(find "$folder" -maxdepth 1 -name '*.cpp' -o -maxdepth 1 -name '*.h' | wc -l)
    if [[ $folder == simulator/* ]] && [ "$sources" -gt "$most_sources" ]; then
        report "$folder has $sources sources, more than $most_sources"
    fi
}

# A part that no rule is about could include anything.
for folder in "$c"/*/ "$p"/*/ "$s"/*/ "$s"/session/*/; do
    folder=${folder%/}
    [ -n "${allowed_in[$folder]+known}" ] || report "$folder has no rule"
done

while read -r folder allowed; do
    [ -n "$folder" ] || continue
    check_folder "$folder" "$allowed"
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
