#!/usr/bin/env bash
# Builds the program and the benchmarks in a Release build and prints a table of medians, each
# figure measured side by side with its baseline in the same run. Start-up and memory run the
# program inside the simulated client (it stops processes with killall at start-up), under an
# Xvfb of their own, and so does the minimal window they are compared with.
# Needs root (for sim/run), Xvfb, xdpyinfo and md5sum; the scan and digest benchmarks work in
# temporary folders under TMPDIR (256 MiB for the digest). REPETITIONS (default 7) and BUILD_DIR
# (default build-bench in the source tree) can be set. The table goes to standard output, the
# rest to standard error. Best run on an otherwise idle machine: start-up times are short.
set -euo pipefail
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$source_dir/build-bench}
repetitions=${REPETITIONS:-7}

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DUSBINSTALLER_BENCH=ON -DBUILD_TESTING=OFF >&2
cmake --build "$build" >&2

sample_stick=$source_dir/sim/stick
results=$(mktemp)
trap 'rm -f "$results"' EXIT

echo "Measuring ($repetitions repetitions each)..." >&2
"$build/bench/bench_scan" 10000 "$repetitions" | sed 's/^/scan10000 /' >>"$results"
"$build/bench/bench_scan" 100 "$repetitions" | sed 's/^/scan100 /' >>"$results"
"$build/bench/bench_digest" 256 "$repetitions" | sed 's/^/digest /' >>"$results"
"$source_dir/sim/run" --quiet --build "$build" -- \
    "$source_dir/bench/in-sim.sh" "$build" "$repetitions" "$sample_stick" >>"$results"

# median KIND COLUMN: the median of one column (2 = program, 3 = baseline, ...) of one kind
median() {
    awk -v kind="$1" -v col="$2" '$1 == kind { print $col }' "$results" | sort -g |
        awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

# row TITLE KIND COLUMN BASELINE_COLUMN UNIT BASELINE_NAME TARGET: one line of the table
# (UNIT ms or KiB, shown as MiB; an empty TARGET marks a reference line)
row() {
    awk -v title="$1" -v p="$(median "$2" "$3")" -v b="$(median "$2" "$4")" -v unit="$5" \
        -v base="$6" -v target="$7" '
        function show(v) {
            if (unit == "KiB") return sprintf("%.1f MiB", v / 1024)
            return sprintf(v < 10 ? "%.2f ms" : "%.1f ms", v)
        }
        BEGIN {
            ratio = p / b
            goal = "-"
            if (target != "")
                goal = sprintf("<= %.2fx %s", target, ratio <= target + 0.005 ? "met" : "MISSED")
            printf "| %s | %s | %s (%s) | %.2fx | %s |\n", title, show(p), show(b), base, ratio, goal
        }'
}

cpu=$(awk -F': ' '/^model name/ { print $2; exit }' /proc/cpuinfo)
qt=$(pkg-config --modversion Qt5Core 2>/dev/null || echo "?")
echo
echo "Machine: $cpu, $(nproc) cores, Linux $(uname -r), Qt $qt"
echo "Medians of $repetitions runs ($((3 * repetitions)) for start-up), each beside its baseline."
echo
echo "| Measurement | USB Installer | Baseline | Ratio | Target |"
echo "|---|---|---|---|---|"
row "Start-up to main window mapped (sample stick)" start 2 3 ms "minimal Qt window" 1.10
row "... reference: minimal window with one line of text" start 4 3 ms "minimal Qt window" ""
row "... reference: the program with OpenGL integration on" start 5 3 ms "minimal Qt window" ""
row "Scan, 14 types, 10,000-file stick" scan10000 2 3 ms "14 readdir+fnmatch passes" 3.00
row "Scan, 14 types, 100-file stick" scan100 2 3 ms "14 readdir+fnmatch passes" ""
row "Picture digest, 256 MiB, warm cache" digest 2 3 ms "md5sum" 1.05
row "Peak memory showing a 1,000-file stick" memory 2 3 KiB "minimal Qt window" 1.10
row "... reference: the program on the sample stick" memory 5 3 KiB "minimal Qt window" ""
row "... reference: minimal window with one line of text" memory 4 3 KiB "minimal Qt window" ""
row "... reference: the program with OpenGL integration on" memory 6 3 KiB "minimal Qt window" ""
