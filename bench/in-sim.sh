#!/usr/bin/env bash
# Runs inside the simulated client (bench/run.sh starts it with sim/run): start-up time, peak
# memory and start-up instructions of the program against a bare window, under an Xvfb of its
# own. Like for like: every program runs without the X11 OpenGL integration, which the program
# turns off for itself, unless a column says "GL" (QT_XCB_GL_INTEGRATION=xcb_glx, the toolkit's
# default here, which loads Mesa's software renderer).
# Usage: in-sim.sh BUILD_DIR REPETITIONS STARTUP_ROUNDS SAMPLE_STICK
# Prints one line per round; in each round the programs run one right after the other, in a
# random order:
#   start    <program ms> <bare ms> <text ms>                          (STARTUP_ROUNDS)
#   memory   <program KiB> <bare KiB> <text KiB> <program on SAMPLE_STICK KiB> (REPETITIONS)
#   glstart  <program GL ms> <bare GL ms> <program ms>                 (STARTUP_ROUNDS)
#   glmemory <program GL KiB> <bare GL KiB> <program KiB>              (REPETITIONS)
#   instructions <program> <bare> <text>                               (once, with valgrind)
# "program": on SAMPLE_STICK for start-up and instructions, on a 1,000-file stick for memory;
# "bare": bench_minimal_window, a window of the main window's title and size; "text": the same
# with one line of text. Memory is the peak RSS once the window has been shown for 0.5 s;
# instructions are those of all threads (valgrind's callgrind) until the window is mapped.
set -euo pipefail
build=$1 repetitions=$2 startup_rounds=$3 sample_stick=$4

program=$build/usb-installer
minimal=$build/bench/bench_minimal_window
export LANG=C.UTF-8 LC_ALL=C.UTF-8 QT_XCB_GL_INTEGRATION=none

# -noreset: the server does not reset each time its last client leaves, which would make the
# next program wait for it (or fail to connect).
Xvfb :42 -screen 0 1280x1024x24 -nolisten tcp -noreset >/dev/null 2>&1 &
export DISPLAY=:42
for _ in $(seq 100); do
    xdpyinfo >/dev/null 2>&1 && break
    sleep 0.1
done
xdpyinfo >/dev/null 2>&1 || { echo "in-sim.sh: Xvfb did not start" >&2; exit 1; }

big_stick=/tmp/stick-1000
mkdir "$big_stick"
"$build/bench/bench_scan" --make "$big_stick" 1000

# mapped SETTLE_MS COMMAND...: "<ms to map> <peak KiB>"
mapped() { "$build/bench/bench_wait_mapped" "USB Installer" "$@"; }
ms() { mapped 0 -- "$@" | cut -d' ' -f1; }
kib() { mapped 500 -- "$@" | cut -d' ' -f2; }

# What is measured; each takes the measuring function (ms, kib, instructions) as argument.
program_sample() { "$1" "$program" "$sample_stick"; }
program_big() { "$1" "$program" "$big_stick"; }
bare() { "$1" "$minimal"; }
text() { "$1" "$minimal" text; }
gl_program_sample() { "$1" env QT_XCB_GL_INTEGRATION=xcb_glx "$program" "$sample_stick"; }
gl_program_big() { "$1" env QT_XCB_GL_INTEGRATION=xcb_glx "$program" "$big_stick"; }
gl_bare() { "$1" env QT_XCB_GL_INTEGRATION=xcb_glx "$minimal"; }

# measure UNIT NAME...: runs the named measurements in a random order (so that none always
# follows another) and prints their results in the order named.
measure() {
    local unit=$1
    shift
    local names=("$@") results=() k
    for k in $(shuf -i 0-$(($# - 1))); do
        results[k]=$("${names[k]}" "$unit")
    done
    echo "${results[*]}"
}

# Each program once before measuring, so that file and font caches are warm for all.
program_sample ms >/dev/null
text ms >/dev/null
gl_bare ms >/dev/null

# The runs with GL on come after the others: ending a process that loaded the software
# renderer leaves the machine busy for a moment, which would slow whatever runs next.
for _ in $(seq "$startup_rounds"); do
    echo "start $(measure ms program_sample bare text)"
done
for _ in $(seq "$repetitions"); do
    echo "memory $(measure kib program_big bare text program_sample)"
done
for _ in $(seq "$startup_rounds"); do
    echo "glstart $(measure ms gl_program_sample gl_bare program_sample)"
done
for _ in $(seq "$repetitions"); do
    echo "glmemory $(measure kib gl_program_big gl_bare program_big)"
done

# instructions COMMAND...: instructions until the window is mapped
instructions() {
    mapped 0 -- valgrind --tool=callgrind --callgrind-out-file=/tmp/callgrind.out "$@" \
        >/dev/null 2>&1
    awk '/^summary:/ { print $2 }' /tmp/callgrind.out
}
if command -v valgrind >/dev/null; then
    echo "instructions $(program_sample instructions) $(bare instructions) $(text instructions)"
fi
