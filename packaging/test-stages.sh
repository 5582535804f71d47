# Sourced by test.sh: runs stages one after the other, keeps what came of each, and prints the table.
# shellcheck shell=bash
#
#   stage NAME [--beside] [--needs NAME] [--results DIRECTORY | --ctest FILE] COMMAND...
#
# runs the command, a function or a program, in a shell of its own. Status 77 says that it cannot run
# here; the last line of its output says why. --beside: while the stages that follow run, for what
# mostly waits; its output is shown when it is over. --needs: the stage that must have passed before.
# --results: where GoogleTest programs leave XML files, --ctest: the JUnit file of ctest; that is
# where the numbers of tests come from, and a stage that was to run tests and ran none has failed.

stage_names=()
stages_beside=()
declare -A process_of kind_of place_of outcome_of seconds_of tests_of passed_of failed_of skipped_of note_of
stages_planned=0

plan() { # function...: the stages that they call are counted first
    local function
    for function in "$@"; do
        stages_planned=$((stages_planned + $(declare -f "$function" | grep -c '^ *stage ')))
    done
    mkdir -p build/test-logs
    for function in "$@"; do "$function"; done
    join_stages
    print_table
    closing_line
}

# The sum of one attribute of the first element of each file.
sum_of() { # attribute file...
    local attribute=$1 sum=0 file value
    shift
    for file in "$@"; do
        value=$(tr '\n\t' '  ' <"$file" | grep -o "<testsuites\\? [^>]*" | head -n 1 |
            grep -o " $attribute=\"[0-9]*\"" | tr -dc 0-9)
        sum=$((sum + ${value:-0}))
    done
    echo "$sum"
}

count_tests() { # name kind place
    local name=$1 kind=$2 place=$3 failed skipped
    local -a files=("$place")
    if [ "$kind" = --results ]; then
        mapfile -t files < <(find "$place" -name '*.xml' 2>/dev/null)
    fi
    [ -e "${files[0]:-}" ] || return 0
    tests_of[$name]=$(sum_of tests "${files[@]}")
    failed=$(($(sum_of failures "${files[@]}") + $(sum_of errors "${files[@]}")))
    skipped=$(($(sum_of disabled "${files[@]}") + $(sum_of skipped "${files[@]}")))
    failed_of[$name]=$failed
    skipped_of[$name]=$skipped
    passed_of[$name]=$((tests_of[$name] - failed - skipped))
}

log_of() { # name
    echo "build/test-logs/$(tr -cs 'A-Za-z0-9\n' - <<<"$1").log"
}

conclude() { # name status seconds
    local name=$1 status=$2 log
    log=$(log_of "$name")
    seconds_of[$name]=$3
    case "$status" in
        0) outcome_of[$name]=passed ;;
        77)
            outcome_of[$name]="not run"
            note_of[$name]=$(tail -n 1 "$log")
            ;;
        *)
            outcome_of[$name]=FAILED
            note_of[$name]="see $log"
            ;;
    esac
    [ -n "${kind_of[$name]}" ] || return 0
    count_tests "$name" "${kind_of[$name]}" "${place_of[$name]}"
    if [ "${outcome_of[$name]}" = passed ] && [ "${tests_of[$name]:-0}" -eq 0 ]; then
        outcome_of[$name]=FAILED
        note_of[$name]="ran no test"
    fi
    [ "${skipped_of[$name]:-0}" -eq 0 ] || note_of[$name]+="${skipped_of[$name]} tests skipped: see $log"
}

stage() {
    local name=$1 beside="" needs="" kind="" place="" log start status
    shift
    while [[ $1 == --* ]]; do
        case "$1" in
            --beside) beside=yes ;;
            --needs) needs=$2 && shift ;;
            --results | --ctest) kind=$1 place=$2 && shift ;;
        esac
        shift
    done
    stage_names+=("$name")
    printf '\n==> [%d/%d] %s%s\n' "${#stage_names[@]}" "$stages_planned" "$name" \
        "${beside:+, beside what follows}"
    if [ -n "$needs" ] && [ "${outcome_of[$needs]}" != passed ]; then
        outcome_of[$name]="not run"
        note_of[$name]="needs: $needs"
        seconds_of[$name]=0
        return 0
    fi
    kind_of[$name]=$kind
    place_of[$name]=$place
    [ -z "$place" ] || rm -rf "$place" # nobody counts what an earlier run left
    log=$(log_of "$name")
    if [ -n "$beside" ]; then
        set -m # a process group of its own, to be ended as a whole
        run_beside "$log" "$@" &
        set +m
        process_of[$name]=$!
        stages_beside+=("$name")
        return 0
    fi
    start=$SECONDS
    status=0
    ("$@") 2>&1 | tee "$log" || status=${PIPESTATUS[0]}
    conclude "$name" "$status" $((SECONDS - start))
}

run_beside() { # log command...
    local log=$1 start=$SECONDS status=0
    shift
    ("$@") >"$log" 2>&1 </dev/null || status=$?
    echo $((SECONDS - start)) >"$log.seconds"
    return "$status"
}

# Waits for the stages beside the others.
join_stages() {
    local name log status
    for name in "${stages_beside[@]}"; do
        log=$(log_of "$name")
        status=0
        wait "${process_of[$name]}" || status=$?
        printf '\n==> %s\n' "$name"
        cat "$log"
        conclude "$name" "$status" "$(cat "$log.seconds")"
    done
    stages_beside=()
}

# Whoever ends this early ends those too.
end_stages() {
    local name
    for name in "${stages_beside[@]}"; do
        kill -- "-${process_of[$name]}" 2>/dev/null || true
    done
}
trap end_stages EXIT

# The five longest system tests, from ctest's file.
longest() {
    grep -o '<testcase name="[^"]*" classname="[^"]*" time="[^"]*"' build/test-logs/system.xml |
        sed -E 's/.* name="([^"]*)".* time="([0-9]*\.?[0-9]{0,1})[^"]*"/\2 \1/; s/<testcase name="([^"]*)".* time="([0-9]*\.?[0-9]{0,1})[^"]*"/\2 \1/' |
        sort -rn | sed -n '1,5s/\(.*\) \(.*\)/\2 (\1 s)/p' | paste -sd, | sed 's/,/, /g'
}

print_table() {
    local name
    printf '\n%-26s %8s %7s %7s  %s\n' stage seconds tests passed outcome
    for name in "${stage_names[@]}"; do
        printf '%-26s %8s %7s %7s  %s\n' "$name" "${seconds_of[$name]}" "${tests_of[$name]:--}" \
            "${passed_of[$name]:--}" "${outcome_of[$name]}${note_of[$name]:+: ${note_of[$name]}}"
    done
    if [ -e build/test-logs/system.xml ]; then
        printf 'Longest system tests: %s\n' "$(longest)"
    fi
}

# The numbers of tests and one line that says how it ended; status 0 only if nothing failed. A stage
# without tests of its own counts as one.
closing_line() {
    local name passed=0 failed=0 skipped=0
    for name in "${stage_names[@]}"; do
        if [ -n "${tests_of[$name]:-}" ]; then
            passed=$((passed + passed_of[$name]))
            failed=$((failed + failed_of[$name]))
            skipped=$((skipped + skipped_of[$name]))
        fi
        case "${outcome_of[$name]}" in
            passed) [ -n "${tests_of[$name]:-}" ] || passed=$((passed + 1)) ;;
            FAILED) [ "${failed_of[$name]:-0}" -gt 0 ] || failed=$((failed + 1)) ;;
            *) skipped=$((skipped + 1)) ;;
        esac
    done
    printf '\nTests: %d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
    [ "$failed" -eq 0 ]
}
