#!/usr/bin/env bash
# Sets up what is missing, builds and runs the whole test suite.
# The tests that run installers or the program do so inside the simulated client (sim/run),
# which needs root.
set -euo pipefail
cd "$(dirname "$0")"

build=${BUILD_DIR:-build}
scripts/setup.sh "$build"
cd "$build"
ctest --output-on-failure -j2
