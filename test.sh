#!/usr/bin/env bash
# Sets up what is missing, builds from scratch and runs the whole test suite.
# The tests that run installers or the program do so inside the simulated client (sim/run),
# which needs root.
set -euo pipefail
cd "$(dirname "$0")"

scripts/deps.sh
build=${BUILD_DIR:-build}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release
cmake --build "$build" -j2
cd "$build"
ctest --output-on-failure -j2
