#!/usr/bin/env bash
# Runs inside the simulated client (bench/run.sh starts it with sim/run): start-up time and
# peak memory of the program against the minimal window, under an Xvfb of its own.
# Usage: in-sim.sh BUILD_DIR REPETITIONS START_STICK
# Prints "start <program ms> <minimal ms>" and "memory <program KiB> <minimal KiB>" lines,
# one of each per repetition, the two programs always run one after the other.
set -euo pipefail
build=$1 repetitions=$2 start_stick=$3

wait_mapped=$build/bench/bench_wait_mapped
program=$build/usb-installer
minimal=$build/bench/bench_minimal_window
title="USB Installer"
export LANG=C.UTF-8 LC_ALL=C.UTF-8

Xvfb :42 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
export DISPLAY=:42
for _ in $(seq 100); do
    xdpyinfo >/dev/null 2>&1 && break
    sleep 0.1
done
xdpyinfo >/dev/null 2>&1 || { echo "in-sim.sh: Xvfb did not start" >&2; exit 1; }

memory_stick=/tmp/stick-1000
mkdir "$memory_stick"
"$build/bench/bench_scan" --make "$memory_stick" 1000

# Each program once before measuring, so font and shader caches are warm for both.
"$wait_mapped" "$title" 0 -- "$program" "$start_stick" >/dev/null
"$wait_mapped" "$title" 0 -- "$minimal" >/dev/null

for _ in $(seq "$repetitions"); do
    p=$("$wait_mapped" "$title" 0 -- "$program" "$start_stick")
    m=$("$wait_mapped" "$title" 0 -- "$minimal")
    echo "start ${p% *} ${m% *}"
done
for _ in $(seq "$repetitions"); do
    p=$("$wait_mapped" "$title" 1000 -- "$program" "$memory_stick")
    m=$("$wait_mapped" "$title" 1000 -- "$minimal")
    echo "memory ${p#* } ${m#* }"
done
