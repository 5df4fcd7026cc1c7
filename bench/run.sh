#!/usr/bin/env bash
# Builds the program and the benchmarks in a Release build and prints a table of medians, each
# figure measured side by side with its baseline in the same run. Start-up and memory run the
# program inside the simulated client (it stops processes with killall at start-up), under an
# Xvfb of their own, and so does the minimal window they are compared with.
# Needs root (for sim/run), Xvfb, xdpyinfo and md5sum. REPETITIONS (default 7) and BUILD_DIR
# (default build-bench in the source tree) can be set. Best run on an otherwise idle machine.
set -euo pipefail
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$source_dir/build-bench}
repetitions=${REPETITIONS:-7}

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DUSBINSTALLER_BENCH=ON -DBUILD_TESTING=OFF >/dev/null
cmake --build "$build" >/dev/null

start_stick=$source_dir/sim/stick
results=$(mktemp)
trap 'rm -f "$results"' EXIT

echo "Measuring ($repetitions repetitions each)..." >&2
"$build/bench/bench_scan" 10000 "$repetitions" | sed 's/^/scan10000 /' >>"$results"
"$build/bench/bench_scan" 100 "$repetitions" | sed 's/^/scan100 /' >>"$results"
"$build/bench/bench_digest" 256 "$repetitions" | sed 's/^/digest /' >>"$results"
"$source_dir/sim/run" --quiet --build "$build" -- \
    "$source_dir/bench/in-sim.sh" "$build" "$repetitions" "$start_stick" >>"$results"

# median KIND COLUMN: the median of one column (2 = program, 3 = baseline) of one kind of line
median() {
    awk -v kind="$1" -v col="$2" '$1 == kind { print $col }' "$results" | sort -g |
        awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

# row TITLE KIND UNIT BASELINE TARGET
row() {
    local program baseline
    program=$(median "$2" 2)
    baseline=$(median "$2" 3)
    awk -v title="$1" -v p="$program" -v b="$baseline" -v unit="$3" -v base="$4" -v target="$5" \
        'BEGIN {
            ratio = p / b
            verdict = target == "" ? "" : (ratio <= target + 0.005 ? "met" : "MISSED")
            goal = target == "" ? "-" : sprintf("<= %.2fx %s", target, verdict)
            printf "| %s | %s %s | %s %s (%s) | %.2fx | %s |\n", title, p, unit, b, unit, base, ratio, goal
        }'
}

cpu=$(awk -F': ' '/^model name/ { print $2; exit }' /proc/cpuinfo)
qt=$(pkg-config --modversion Qt5Core 2>/dev/null || echo "?")
echo
echo "Machine: $cpu, $(nproc) cores, Linux $(uname -r), Qt $qt; medians of $repetitions runs"
echo
echo "| Measurement | USB Installer | Baseline | Ratio | Target |"
echo "|---|---|---|---|---|"
row "Start-up to main window mapped (sample stick)" start ms "minimal Qt window" 1.10
row "Scan, 14 types, 10,000-file stick" scan10000 ms "14 readdir+fnmatch passes" 3.00
row "Scan, 14 types, 100-file stick" scan100 ms "14 readdir+fnmatch passes" ""
row "Picture digest, 256 MiB, warm cache" digest ms "md5sum" 1.05
row "Peak memory showing a 1,000-file stick" memory KiB "minimal Qt window" 1.10
