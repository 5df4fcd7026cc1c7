#!/usr/bin/env bash
# Builds the discovery fuzzer with clang and runs it for a short while on the committed corpus.
# CI calls it as it is; FUZZ_SECONDS runs it longer, BUILD_DIR picks the build directory.
# Any invariant violation or sanitizer report fails the run; the input that caused it is kept
# in the build directory (crash-*) and can be replayed: build-fuzz/fuzz/fuzz_discovery FILE
set -euo pipefail
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$source_dir/build-fuzz}
seconds=${FUZZ_SECONDS:-20}

CC=clang CXX=clang++ cmake -S "$source_dir" -B "$build" -G Ninja \
    -DUSBINSTALLER_FUZZ=ON -DBUILD_TESTING=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" --target fuzz_discovery

# New inputs go to a scratch corpus, so the committed one stays small; the fuzzer's temporary
# directories go to a scratch folder that is removed afterwards, whatever happened.
work=$(mktemp -d "$build/fuzz-run.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir "$work/corpus" "$work/tmp"

cd "$build"
TMPDIR=$work/tmp "$build/fuzz/fuzz_discovery" \
    -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -dict="$source_dir/fuzz/discovery.dict" \
    "$work/corpus" "$source_dir/fuzz/corpus"
