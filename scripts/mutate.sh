#!/usr/bin/env bash
# Mutation run: puts one small fault at a time into the program's sources (the list in
# scripts/mutants.txt), rebuilds, runs the test suite and records whether the suite failed
# (caught) or passed (missed). Every source is restored byte for byte after its mutant, also
# when the run is interrupted, and checked against git.
#
# Usage: scripts/mutate.sh [--check] [--until HH:MM] [LABEL-REGEX]
#   --check        only report which mutants no longer match the sources (no build, no tests)
#   --until HH:MM  start no mutant after this time; the summary covers what was run
#   LABEL-REGEX    run only the mutants whose label matches (grep -E)
# Environment: BUILD_DIR (default build-mutate), MUTANTS (default scripts/mutants.txt),
#   MUTANT_TIMEOUT (seconds for one mutant's build and tests, default 900), JOBS (default 2),
#   SKIP_BASELINE=1 (do not run the unmutated suite first).
# The test suite runs installers only inside the simulated client, which needs root.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1

build=${BUILD_DIR:-build-mutate}
mutants_file=${MUTANTS:-scripts/mutants.txt}
limit=${MUTANT_TIMEOUT:-900}
jobs=${JOBS:-2}
source_dirs=(app check discovery installers platform/host record security ui)

check_only=0
until_epoch=
filter=
while (($#)); do
    case $1 in
    --check) check_only=1 ;;
    --until)
        until_epoch=$(date -d "${2:?--until needs a time}" +%s) || exit 1
        shift
        ;;
    -h | --help)
        sed -n '2,/^set -uo/p' "$0" | sed '$d; s/^# \{0,1\}//'
        exit 0
        ;;
    -*)
        echo "mutate.sh: unknown option $1" >&2
        exit 1
        ;;
    *) filter=$1 ;;
    esac
    shift
done

die() {
    echo "mutate.sh: $*" >&2
    exit 1
}

[[ -f $mutants_file ]] || die "no mutant list $mutants_file"

# --- The mutant list ---
labels=() files=() originals=() replacements=()
parse_error() { die "$mutants_file:$line_no: $*"; }
add_mutant() {
    [[ -n $label ]] || return 0
    [[ -n $file ]] || parse_error "mutant $label names no file (= path)"
    ((have_original)) || parse_error "mutant $label has no original text (- lines)"
    [[ -n $original ]] || parse_error "mutant $label: the original text is empty"
    local known
    for known in "${labels[@]}"; do
        [[ $known != "$label" ]] || parse_error "mutant $label is listed twice"
    done
    labels+=("$label") files+=("$file") originals+=("$original") replacements+=("$replacement")
}
label='' line_no=0
while IFS= read -r line || [[ -n $line ]]; do
    line_no=$((line_no + 1))
    case $line in
    '@ '*)
        add_mutant
        label=${line#@ } file='' original='' replacement='' have_original=0 have_replacement=0
        [[ $label =~ ^[A-Za-z0-9._-]+$ ]] || parse_error "label '$label' must be one word"
        ;;
    '= '*) file=${line#= } ;;
    '-' | '- '*)
        text=${line#-}
        text=${text# }
        if ((have_original)); then original+=$'\n'$text; else original=$text; fi
        have_original=1
        ;;
    '+' | '+ '*)
        text=${line#+}
        text=${text# }
        if ((have_replacement)); then replacement+=$'\n'$text; else replacement=$text; fi
        have_replacement=1
        ;;
    '' | '#'*) ;;
    *) parse_error "cannot read this line (a mutant line starts with '@ ', '= ', '- ' or '+ ')" ;;
    esac
done <"$mutants_file"
add_mutant
((${#labels[@]})) || die "$mutants_file lists no mutant"

program_source() {
    local dir
    for dir in "${source_dirs[@]}"; do
        [[ $1 == "$dir"/* ]] && return 0
    done
    return 1
}

# Prints why the mutant cannot be applied, or nothing when its original text occurs exactly
# once in its file.
stale_reason() {
    local i=$1 path=${files[$1]} content rest count=0
    program_source "$path" || {
        echo "$path is not a program source (${source_dirs[*]})"
        return
    }
    [[ -f $path ]] || {
        echo "$path does not exist"
        return
    }
    content=$(
        cat -- "$path"
        printf x
    )
    rest=${content%x}
    while [[ $rest == *"${originals[$i]}"* ]]; do
        rest=${rest#*"${originals[$i]}"}
        count=$((count + 1))
    done
    ((count == 1)) || echo "its original text occurs $count times in $path"
}

selected=()
for i in "${!labels[@]}"; do
    if [[ -z $filter ]] || grep -Eq -- "$filter" <<<"${labels[$i]}"; then
        selected+=("$i")
    fi
done
((${#selected[@]})) || die "no mutant label matches '$filter'"

if ((check_only)); then
    stale=0
    for i in "${selected[@]}"; do
        reason=$(stale_reason "$i")
        if [[ -n $reason ]]; then
            echo "STALE ${labels[$i]}: $reason"
            stale=$((stale + 1))
        fi
    done
    echo "${#selected[@]} mutants, $stale stale"
    exit 0
fi

git diff --quiet HEAD -- "${source_dirs[@]}" ||
    die "the program's sources have uncommitted changes; commit or stash them first, so that each restored file can be checked against git"

# --- Running ---
mkdir -p "$build/mutate-logs"
build=$(cd "$build" && pwd)
logs=$build/mutate-logs
results=$build/mutate-results.tsv
backup=$build/mutate-backup
mutated_file='' child='' interrupted=0
statuses=() details=()

restore() {
    [[ -n $mutated_file ]] || return 0
    cp -- "$backup" "$mutated_file" || die "could not restore $mutated_file from $backup"
    # A new time stamp, so that the next build compiles the restored file again.
    touch -- "$mutated_file"
    if ! cmp -s -- "$backup" "$mutated_file" || ! git diff --quiet HEAD -- "$mutated_file"; then
        die "$mutated_file differs from its committed text after the restore; its original is in $backup"
    fi
    mutated_file=''
}

# Runs a command in its own process group under the per-mutant time limit; the group is
# stopped when the run is interrupted.
run_limited() {
    local seconds=$1 log=$2
    shift 2
    timeout -k 10 "$seconds" "$@" >>"$log" 2>&1 &
    child=$!
    wait "$child"
    local status=$?
    child=''
    return "$status"
}

summary() {
    local caught=0 missed=0 stale=0 unbuilt=0 ran=0 i
    local -A missed_by=()
    for i in "${!statuses[@]}"; do
        case ${statuses[$i]} in
        caught | timeout) caught=$((caught + 1)) ran=$((ran + 1)) ;;
        missed)
            missed=$((missed + 1)) ran=$((ran + 1))
            local area=${files[$i]%%/*}
            missed_by[$area]=$((${missed_by[$area]:-0} + 1))
            ;;
        stale) stale=$((stale + 1)) ;;
        unbuilt) unbuilt=$((unbuilt + 1)) ;;
        esac
    done
    echo
    ((interrupted)) && echo "Stopped after ${#statuses[@]} of ${#selected[@]} mutants."
    echo "$ran mutants, $caught caught, $missed missed"
    ((stale + unbuilt)) && echo "($stale stale, $unbuilt did not build: not counted)"
    if ((missed)); then
        echo "Missed:"
        for i in "${!statuses[@]}"; do
            [[ ${statuses[$i]} == missed ]] && echo "  ${labels[$i]}  (${files[$i]})"
        done
        local area line=
        for area in "${!missed_by[@]}"; do line+=" $area ${missed_by[$area]},"; done
        echo "Missed by subsystem:${line%,}"
    fi
    if ((stale + unbuilt)); then
        echo "Stale or not building (refresh these in $mutants_file):"
        for i in "${!statuses[@]}"; do
            [[ ${statuses[$i]} == stale || ${statuses[$i]} == unbuilt ]] &&
                echo "  ${labels[$i]}: ${details[$i]}"
        done
    fi
    echo "Results: $results; logs: $logs"
}

on_signal() {
    trap - INT TERM
    interrupted=1
    [[ -n $child ]] && kill -TERM "$child" 2>/dev/null && wait "$child" 2>/dev/null
    restore
    summary
    exit 130
}
trap on_signal INT TERM
trap restore EXIT

echo "Building $build"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release >"$logs/configure.log" 2>&1 ||
    die "configuring failed, see $logs/configure.log"
run_limited "$limit" "$logs/baseline-build.log" cmake --build "$build" -j"$jobs" ||
    die "the unmutated sources do not build, see $logs/baseline-build.log"
if [[ ${SKIP_BASELINE:-0} != 1 ]]; then
    echo "Running the unmutated suite"
    start=$SECONDS
    run_limited "$limit" "$logs/baseline-tests.log" \
        ctest --test-dir "$build" -j"$jobs" --output-on-failure ||
        die "the unmutated suite fails; fix that first (see $logs/baseline-tests.log)"
    echo "The unmutated suite passes ($((SECONDS - start)) s)"
fi

printf 'label\tfile\tstatus\tseconds\tdetail\n' >"$results"
run_start=$SECONDS
count=0
for i in "${selected[@]}"; do
    if [[ -n $until_epoch ]] && (($(date +%s) >= until_epoch)); then
        interrupted=1
        break
    fi
    count=$((count + 1))
    label=${labels[$i]} path=${files[$i]}
    log=$logs/$label.log
    : >"$log"
    start=$SECONDS
    status='' detail=''
    reason=$(stale_reason "$i")
    if [[ -n $reason ]]; then
        status=stale detail=$reason
    else
        content=$(
            cat -- "$path"
            printf x
        )
        content=${content%x}
        cp -p -- "$path" "$backup"
        mutated_file=$path
        printf '%s' "${content%%"${originals[$i]}"*}${replacements[$i]}${content#*"${originals[$i]}"}" >"$path"
        if ! run_limited "$limit" "$log" cmake --build "$build" -j"$jobs"; then
            status=unbuilt detail="the mutated source does not build, see $log"
        else
            echo "--- tests ---" >>"$log"
            run_limited $((limit - (SECONDS - start) > 1 ? limit - (SECONDS - start) : 1)) "$log" \
                ctest --test-dir "$build" -j"$jobs" --stop-on-failure --output-on-failure
            case $? in
            0) status=missed ;;
            124 | 137) status=timeout detail="no result within ${limit} s" ;;
            *)
                status=caught
                detail=$(grep -oE 'Test +#[0-9]+: [^ ]+ [.]+\**(Failed|Exception|Timeout|Not Run)' "$log" |
                    sed -E 's/.*: ([^ ]+) .*/\1/' | sort -u | paste -sd, -)
                ;;
            esac
        fi
        restore
    fi
    statuses[i]=$status details[i]=$detail
    printf '%s\t%s\t%s\t%s\t%s\n' "$label" "$path" "$status" $((SECONDS - start)) "$detail" >>"$results"
    printf '[%2d/%d] %-8s %-36s %4d s  %s\n' "$count" "${#selected[@]}" "$status" "$label" \
        $((SECONDS - start)) "$detail"
done

git diff --quiet HEAD -- "${source_dirs[@]}" ||
    die "the program's sources differ from git after the run; see git status"
summary
echo "Took $(((SECONDS - run_start) / 60)) min for ${#statuses[@]} mutants."
