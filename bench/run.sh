#!/usr/bin/env bash
# Builds the program and the benchmarks in a Release build and prints a table of medians, each
# figure measured side by side with its baseline in the same run. Start-up and memory run the
# program inside the simulated client (it stops processes with killall at start-up), under an
# Xvfb of their own, beside a bare window, like for like: all without the X11 OpenGL
# integration, which the program turns off for itself; rows marked "GL on" are references with
# it on. The ratio is the median of the ratios of the rounds (each program run right beside its
# baseline), with the 95% confidence interval of that median as a +-percentage.
# Needs root (for sim/run), Xvfb, xdpyinfo and md5sum, and for the content check's benchmark
# (bench/content.sh) Debian's lomiri-wallpapers-20.04 and ca-certificates; valgrind, when
# present, adds the instruction counts. The scan, digest and content benchmarks work in
# temporary folders under TMPDIR (256 MiB for the digest, 300 MiB for the content check), the
# wallpaper installation in the simulated client. REPETITIONS (default 7: scan, digest, memory),
# STARTUP_ROUNDS (default 61), INSTALL_ROUNDS (default 15: the wallpaper through the window)
# and BUILD_DIR (default build-bench in the source tree) can be set. Start-up and memory run at
# nice -10, so that other work on the machine disturbs them less. The table goes to standard
# output, the rest to standard error.
set -euo pipefail
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$source_dir/build-bench}
repetitions=${REPETITIONS:-7}
startup_rounds=${STARTUP_ROUNDS:-61}
install_rounds=${INSTALL_ROUNDS:-15}

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DUSBINSTALLER_BENCH=ON -DBUILD_TESTING=OFF >&2
cmake --build "$build" >&2

sample_stick=$source_dir/sim/stick
results=$(mktemp)
trap 'rm -f "$results"' EXIT

echo "Measuring ($repetitions repetitions, $startup_rounds start-up rounds)..." >&2
# Start-up first: the digest's 256 MiB file is still being written back to disk for a while
# after the digest benchmark has removed it, which slows whatever runs then.
{
    nice -n -10 "$source_dir/sim/run" --quiet --build "$build" -- "$source_dir/bench/in-sim.sh" \
        "$build" "$repetitions" "$startup_rounds" "$sample_stick"
    "$build/bench/bench_scan" 10000 "$repetitions" | sed 's/^/scan10000 /'
    "$build/bench/bench_scan" 100 "$repetitions" | sed 's/^/scan100 /'
    "$build/bench/bench_digest" 256 "$repetitions" | sed 's/^/digest /'
    "$source_dir/sim/run" --quiet --build "$build" -- "$source_dir/bench/install-in-sim.sh" \
        "$build" "$install_rounds"
    "$source_dir/bench/content.sh" "$build/usb-stick-check" "$repetitions"
} >>"$results"

# median KIND COLUMN: the median of one column (2 = program, 3 = baseline, ...) of one kind
median() {
    awk -v kind="$1" -v col="$2" '$1 == kind { print $col }' "$results" | sort -g |
        awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

# ratio KIND COLUMN BASELINE_COLUMN: "<median of the rounds' ratios> <+-% of its 95% interval>"
# (the interval between the order statistics n/2 -+ 0.98 sqrt(n); "-" for a single round)
ratio() {
    awk -v kind="$1" -v col="$2" -v base="$3" '$1 == kind { print $col / $base }' "$results" |
        sort -g | awk '
        { v[NR] = $1 }
        END {
            m = (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
            if (NR < 2) { print m, "-"; exit }
            lo = int(NR / 2 - 0.98 * sqrt(NR) + 0.5); if (lo < 1) lo = 1
            hi = int(NR / 2 + 1 + 0.98 * sqrt(NR) + 0.5); if (hi > NR) hi = NR
            e = (m - v[lo] > v[hi] - m) ? m - v[lo] : v[hi] - m
            printf "%g %.0f\n", m, 100 * e / m
        }'
}

# row TITLE KIND COLUMN BASELINE_COLUMN UNIT BASELINE_NAME TARGET: one line of the table
# (UNIT ms, KiB shown as MiB, or Ir for instructions; an empty TARGET marks a reference line)
row() {
    grep -q "^$2 " "$results" || return 0
    read -r r e <<<"$(ratio "$2" "$3" "$4")"
    awk -v title="$1" -v p="$(median "$2" "$3")" -v b="$(median "$2" "$4")" -v unit="$5" \
        -v base="$6" -v target="$7" -v r="$r" -v e="$e" '
        function show(v) {
            if (unit == "KiB") return sprintf("%.1f MiB", v / 1024)
            if (unit == "Ir") return sprintf("%.1f M instructions", v / 1e6)
            return sprintf(v < 10 ? "%.2f ms" : "%.1f ms", v)
        }
        BEGIN {
            goal = "-"
            if (target != "")
                goal = sprintf("<= %.2fx %s", target, r <= target + 0.005 ? "met" : "MISSED")
            spread = (e == "-") ? "" : sprintf(" +-%d%%", e)
            printf "| %s | %s | %s (%s) | %.2fx%s | %s |\n", title, show(p), show(b), base, r,
                spread, goal
        }'
}

cpu=$(awk -F': ' '/^model name/ { print $2; exit }' /proc/cpuinfo)
qt=$(pkg-config --modversion Qt5Core 2>/dev/null || echo "?")
echo
echo "Machine: $cpu, $(nproc) cores, Linux $(uname -r), Qt $qt"
echo "Medians of $startup_rounds start-up rounds and $repetitions of the others, each beside its" \
    "baseline; OpenGL integration off unless \"GL on\"."
echo
echo "| Measurement | USB Installer | Baseline | Ratio | Target |"
echo "|---|---|---|---|---|"
row "Start-up to main window mapped (sample stick)" start 2 3 ms "bare window" 1.25
row "... reference: window with one line of text" start 4 3 ms "bare window" ""
row "... reference: instructions until mapped" instructions 2 3 Ir "bare window" ""
row "... reference: window with one line of text, instructions" instructions 4 3 Ir \
    "bare window" ""
row "... reference: both with GL on" glstart 2 3 ms "bare window, GL on" ""
row "... reference: the program against the bare window with GL on" glstart 4 3 ms \
    "bare window, GL on" ""
row "Peak memory showing a 1,000-file stick" memory 2 3 KiB "bare window" 1.15
row "... reference: the program on the sample stick" memory 5 3 KiB "bare window" ""
row "... reference: window with one line of text" memory 4 3 KiB "bare window" ""
row "... reference: both with GL on" glmemory 2 3 KiB "bare window, GL on" ""
row "... reference: the program against the bare window with GL on" glmemory 4 3 KiB \
    "bare window, GL on" ""
row "Scan, 14 types, 10,000-file stick" scan10000 2 3 ms "14 readdir+fnmatch passes" 1.00
row "Scan, 14 types, 100-file stick" scan100 2 3 ms "14 readdir+fnmatch passes" ""
row "Picture digest, 256 MiB, warm cache" digest 2 3 ms "md5sum" 1.05
row "Wallpaper, 256 MiB, through the window: Install to window back" install 2 3 ms \
    "cp + md5sum + sync" 1.42
row "Stick check with contents: 200 pictures, 142 certificates" content 2 3 ms "--no-content" ""
row "... CPU time, all cores" contentcpu 2 3 ms "--no-content" ""
row "... peak memory" contentmemory 2 3 KiB "--no-content" ""
