#!/usr/bin/env bash
# What test.sh, .ci/run and demo.sh all start with: installs what is missing, then configures
# and builds a Release tree.
#   scripts/setup.sh [BUILD_DIR]      (default $BUILD_DIR, else build in the source tree)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
build=${1:-${BUILD_DIR:-build}}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release
cmake --build "$build" -j2
