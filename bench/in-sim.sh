#!/usr/bin/env bash
# Runs inside the simulated client (bench/run.sh starts it with sim/run): start-up time and
# peak memory of the program against the minimal window, under an Xvfb of its own.
# Usage: in-sim.sh BUILD_DIR REPETITIONS SAMPLE_STICK
# Per repetition, the programs one right after the other, prints (start: three times as many)
#   start  <program ms> <minimal ms> <minimal with text ms> <program with OpenGL ms>
#   memory <program KiB> <minimal KiB> <minimal with text KiB> <program on SAMPLE_STICK KiB>
#          <program with OpenGL KiB>
# (start: the program on SAMPLE_STICK. "With OpenGL": the X11 OpenGL integration that the
# program turns off and the minimal window loads, for a like-for-like comparison.)
# (memory: the program on a 1,000-file stick, peak RSS once the window has been shown a while).
set -euo pipefail
build=$1 repetitions=$2 sample_stick=$3

program=$build/usb-installer
minimal=$build/bench/bench_minimal_window
export LANG=C.UTF-8 LC_ALL=C.UTF-8

Xvfb :42 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
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

# Each program once before measuring, so that file and font caches are warm for all.
mapped 0 -- "$program" "$sample_stick" >/dev/null
mapped 0 -- "$minimal" text >/dev/null

# Start-up is short and the most sensitive to other load, so it is measured three times as
# often, and the order of the three programs turns each time so none always follows another.
for i in $(seq $((3 * repetitions))); do
    case $((i % 3)) in
        0) p=$(ms "$program" "$sample_stick") m=$(ms "$minimal") t=$(ms "$minimal" text) ;;
        1) m=$(ms "$minimal") t=$(ms "$minimal" text) p=$(ms "$program" "$sample_stick") ;;
        2) t=$(ms "$minimal" text) p=$(ms "$program" "$sample_stick") m=$(ms "$minimal") ;;
    esac
    g=$(ms env QT_XCB_GL_INTEGRATION=xcb_glx "$program" "$sample_stick")
    echo "start $p $m $t $g"
done
for _ in $(seq "$repetitions"); do
    echo "memory $(kib "$program" "$big_stick") $(kib "$minimal") $(kib "$minimal" text)" \
        "$(kib "$program" "$sample_stick")" \
        "$(kib env QT_XCB_GL_INTEGRATION=xcb_glx "$program" "$big_stick")"
done
