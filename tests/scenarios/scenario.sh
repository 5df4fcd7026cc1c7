#!/usr/bin/env bash
# Runs scenarios of the installers and the program on the simulated client and compares each
# transcript with the expected one checked in beside it (NAME.scenario, NAME.expected).
#
#   scenario.sh [--update] NAME.scenario...   compare, or (--update) rewrite the expectations
#
# SCENARIO_SIM_OPTIONS adds options of sim/run to every scenario (e.g. --stale-font-cache: the
# transcripts must not change).
# A scenario is a list of steps in shell syntax, so that any name can be written ($'a\nb.jpg'):
#   sim OPTIONS...          options of sim/run for the whole scenario (--marker, --legacy, ...)
#   say TEXT                a line of the transcript saying what comes next
#   put PATH [CONTENT]      a file: a bare PATH on the stick ($stick), else on the client; the
#                           content is the file's own name unless given
#   tool NAME|PATH STATUS   the client tool records its call, then exits STATUS ("pass": runs
#                           the real one)
#   scan                    what the program's scan offers of the stick, and why not the rest
#   install TYPE FILE...    one installation, as the window's worker runs it
#   step TITLE COMMAND...   any other command as a step
#   check ARGS...           the stick check on the stick
#   program ARGS...         the program itself, offscreen; "window" as the last word waits until
#                           its window is open, then closes it
# Any other shell command prepares the client or the stick between steps. Each step's
# transcript holds its output and status, the shell commands the program ran, what the shell
# said of those started in the background, the calls of the client's tools, and every file the
# step created, changed or removed (text shown, else digest).
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/../.." && pwd)

if [[ ${USBI_SIM:-} != 1 ]]; then
    export USBI_BINARY_DIR=${USBI_BINARY_DIR:-$source_dir/build}
    update=0 failed=0
    read -r -a extra <<<"${SCENARIO_SIM_OPTIONS:-}"
    [[ ${1:-} == --update ]] && { update=1; shift; }
    for scenario; do
        expected=${scenario%.scenario}.expected
        options=()
        eval "options=($(sed -n 's/^sim //p' "$scenario"))"
        actual=$("$source_dir/sim/run" --quiet "${options[@]}" "${extra[@]}" -- "$here/scenario.sh" "$(realpath "$scenario")")
        if ((update)); then
            printf '%s\n' "$actual" >"$expected"
        elif ! diff -u --label expected --label actual "$expected" - <<<"$actual"; then
            echo "scenario $scenario: the transcript differs (scenario.sh --update after review)"
            failed=1
        fi
    done
    exit "$failed"
fi

build=${USBI_BINARY_DIR:?}
stick=/media/usb0
work=/var/lib/scenario
changes=/var/lib/sim-changes
mkdir -p "$stick" "$work/bin" "$work/cwd" && mkdir -m 0700 "$work/runtime"
export PATH=$work/bin:$PATH XDG_RUNTIME_DIR=$work/runtime HOME=/root
# The program starts as on the client, with none of the caller's settings of the toolkit.
unset "${!QT_@}"
# Commands that a name could redirect or retarget write into the working folder, which is
# watched like every other place.
cd "$work/cwd" || exit 1
# Started by name, as the client starts them.
ln -sf "$build/usb-installer" "$build/usb-stick-check" /usr/local/bin/

sim() { :; }
say() { printf '\n# %s\n' "$*"; }

put() {
    local path=$1
    [[ $path == /* ]] || path=$stick/$path
    mkdir -p "$(dirname "$path")"
    printf '%s' "${2-$1}" >"$path"
}

# shellcheck disable=SC2016 # the shim expands these when it runs
tool() {
    local path=$1
    [[ $path == /* ]] || path=$work/bin/$1
    rm -f "$path"
    {
        printf '#!/bin/bash\n. %q\nsim_record "$@"\n' "$source_dir/sim/lib/record.sh"
        printf 'echo "$SIM_TOOL: QT_XCB_GL_INTEGRATION=${QT_XCB_GL_INTEGRATION-unset}" >>%q\n' "$work/env.log"
        if [[ $2 == pass ]]; then
            printf 'PATH=${PATH#%q:} exec "$SIM_TOOL" "$@"\n' "$work/bin"
        else
            printf 'exit %d\n' "$2"
        fi
    } >"$path"
    chmod 755 "$path"
}

# One line per file the simulated client has changed so far: its kind, size, time and path.
# Removed files show as character devices, folders only while they hold no change; a folder is
# shown only while it is empty for the client too (the X server rewrites its keymap folder).
state() {
    (cd "$changes" && find . \( ! -type d -o -empty \) -printf '%y %s %T@ %p\n') | sed 's| \./| /|' |
        grep -a -v -E "^[^ ]+ [^ ]+ [^ ]+ (/var/log/sim/|$work/|/root/|/var/lib/sim/inside)" | sort
}

show() {
    local kind=$1 p=${1#* * * }
    case $kind in
    c*) printf '%s removed\n' "$p" ;;
    l*) printf '%s -> %s\n' "$p" "$(readlink "$p")" ;;
    d*) [[ -n $(ls -A "$p") ]] || printf '%s/ (folder)\n' "$p" ;;
    *)
        if [[ $p == "$stick/usb-installer-reports/"* ]]; then
            # A report on the stick, whole.
            printf '%s:\n' "$p"
            sed 's/^/  | /' "$p"
        elif [[ ! -s $p ]]; then
            printf '%s: empty\n' "$p"
        elif (($(stat -c %s "$p") <= 600)) && ! LC_ALL=C grep -a -q '[^[:print:][:space:]]' "$p"; then
            printf '%s:\n' "$p"
            sed 's/^/  | /' "$p"
            [[ -z $(tail -c1 "$p") ]] || printf '\n  (no line end)\n'
        else
            printf '%s: %s bytes, md5 %s\n' "$p" "$(stat -c %s "$p")" "$(md5sum <"$p" | cut -c1-32)"
        fi
        ;;
    esac
}


section() {
    [[ -s $2 ]] || return 0
    printf '%s:\n' "$1"
    sed 's/^/  /' "$2"
}

# step TITLE COMMAND...: runs the command as one step and writes its transcript.
step() {
    local title=$1 before after status
    shift
    before=$(state)
    : >"$DAX_SHELL_LOG"
    : >"$SIM_CALL_LOG"
    : >"$work/env.log"
    : >"$journal_log"
    : >"$syslog_log"
    printf '\n$ %s\n' "$title"
    # Into a file, not a pipe: desktop programs the step starts keep running.
    "$@" >"$work/out" 2>&1
    status=$?
    # Commands started in the background (desktop programs) run in their own time: wait until
    # each has recorded its call or the shell has said it could not start it. Their calls, and
    # what the shell said about them, are listed sorted (the shell log keeps the order).
    grep -a ' &$' "$DAX_SHELL_LOG" | cut -d' ' -f1 >"$work/started"
    while IFS= read -r started; do
        for _ in $(seq 50); do
            awk -v n="$started" '$0 == n || index($0, n " ") == 1 { f = 1 } END { exit !f }' \
                "$SIM_CALL_LOG" && break
            background <"$work/out" | grep -q -F -- ": $started: " && break
            sleep 0.1
        done
    done <"$work/started"
    sort -o "$SIM_CALL_LOG" "$SIM_CALL_LOG"
    background <"$work/out" | sort >"$work/background"
    # Object addresses in the toolkit's warnings differ from run to run.
    background -v <"$work/out" | sed -E 's/^/  /; s/0x[0-9a-f]{6,}/0x.../g'
    printf 'status %d\n' "$status"
    section shell "$DAX_SHELL_LOG"
    section background "$work/background"
    section calls "$SIM_CALL_LOG"
    section environment "$work/env.log"
    record
    after=$(state)
    comm -13 <(printf '%s\n' "$before") <(printf '%s\n' "$after") | grep . | sort -t' ' -k4 |
        while IFS= read -r line; do show "$line"; done >"$work/changed"
    comm -23 <(printf '%s\n' "$before" | cut -d' ' -f4- | sort) <(printf '%s\n' "$after" | cut -d' ' -f4- | sort) |
        grep . | while IFS= read -r p; do [[ -e $p || -L $p ]] || printf '%s gone\n' "$p"; done >>"$work/changed"
    section changed "$work/changed"
}

# The system log the step wrote, once the listeners have written out everything sent: journal
# entries field by field (each ended by "--"), syslog lines with their time and process id made
# constant (the C library's syslog takes its time where a pinned clock does not reach).
journal_log=/var/log/sim/journal.log
syslog_log=/var/log/sim/syslog.log
record() {
    "$build/sim-tools/logsink" --sync /run/systemd/journal/socket 2>/dev/null
    "$build/sim-tools/logsink" --sync /dev/log
    section journal "$journal_log"
    sed -E 's/^(<[0-9]+>)[A-Z][a-z]{2} [ 0-9][0-9] [0-9:]{8} ([^ []*)\[[0-9]+\]:/\1TIME \2[PID]:/' \
        "$syslog_log" >"$work/syslog"
    section syslog "$work/syslog"
}

# background [-v]: the lines of the output in which the shell speaks of a command it started in
# the background (-v: the other lines).
background() {
    awk -v others="${1:-}" -v list="$work/started" '
        BEGIN { while ((getline n <list) > 0) names[n] }
        {
            mine = 0
            if (match($0, /^\/bin\/sh: [0-9]+: /))
                for (n in names) if (index(substr($0, RLENGTH + 1), n ": ") == 1) mine = 1
            if (mine != (others == "-v")) print
        }'
}

words() { (($# == 0)) || printf ' %q' "$@"; }
scan() { step "scan" "$build/scenario-tool" scan "$stick"; }
install() { step "install$(words "$@")" "$build/scenario-tool" install "$1" "$stick" "${@:2}"; }
check() { step "check$(words "$@")" usb-stick-check "$@" "$stick"; }
program() {
    if [[ ${*: -1} == window ]]; then
        step "program$(words "$@")" program_window "${@:1:$#-1}"
    else
        step "program$(words "$@")" env QT_QPA_PLATFORM=offscreen timeout 120 usb-installer "$@"
    fi
}

# The program with its window: open once the stray prompts have been cleaned up, and still
# open a second later.
program_window() {
    QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} usb-installer "$@" &
    local pid=$!
    for _ in $(seq 300); do
        grep -a -q 'killall .*wpassword' "$SIM_CALL_LOG" && break
        sleep 0.1
    done
    sleep 1
    kill -0 "$pid" 2>/dev/null && echo "window open"
    kill "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
    return 0
}

# shellcheck source=/dev/null
source "$1"
