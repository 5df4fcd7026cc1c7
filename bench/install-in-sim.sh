#!/usr/bin/env bash
# Runs inside the simulated client (bench/run.sh starts it with sim/run): a 256 MiB wallpaper
# installed through the main window, from the click on Install to the main window shown again,
# against cp, md5sum and sync of the same file, in paired rounds on an Xvfb of its own.
# Usage: install-in-sim.sh BUILD_DIR ROUNDS
# Prints "install <window ms> <cp+md5sum+sync ms>" per round.
set -euo pipefail
build=$1 rounds=$2
source_dir=$(cd "$(dirname "$0")/.." && pwd)

export LANG=C.UTF-8 LC_ALL=C.UTF-8 QT_XCB_GL_INTEGRATION=none
export XDG_RUNTIME_DIR=/dev/shm/bench-runtime
mkdir -m 0700 "$XDG_RUNTIME_DIR"
# shellcheck source=scripts/xvfb.sh
source "$source_dir/scripts/xvfb.sh"
start_xvfb || { echo "install-in-sim.sh: Xvfb did not start" >&2; exit 1; }

stick=/tmp/bench-stick
mkdir "$stick"
# The installer's own output (rm of a wallpaper link not there yet) is not a figure.
"$build/bench/bench_install" "$stick" 256 "$rounds" 2>/dev/null
