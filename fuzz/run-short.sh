#!/usr/bin/env bash
# Builds the fuzzers with clang and runs them for a short while on their committed corpora:
# discovery half of the time, the OpenVPN profile and PPD readers a quarter each. CI calls it as
# it is; FUZZ_SECONDS (the total, default 20) runs them longer, BUILD_DIR picks the build
# directory.
# Any invariant violation or sanitizer report fails the run; the input that caused it is kept
# in the build directory (crash-*) and can be replayed: build-fuzz/fuzz/fuzz_discovery FILE
set -euo pipefail
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$source_dir/build-fuzz}
seconds=${FUZZ_SECONDS:-20}

CC=clang CXX=clang++ cmake -S "$source_dir" -B "$build" -G Ninja \
    -DUSBINSTALLER_FUZZ=ON -DBUILD_TESTING=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" --target fuzz_discovery fuzz_openvpn fuzz_ppd

# New inputs go to a scratch corpus, so the committed one stays small; the fuzzer's temporary
# directories go to a scratch folder that is removed afterwards, whatever happened.
work=$(mktemp -d "$build/fuzz-run.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir "$work/corpus" "$work/tmp" "$work/openvpn" "$work/ppd"

cd "$build"
TMPDIR=$work/tmp "$build/fuzz/fuzz_discovery" \
    -max_total_time=$((seconds / 2)) -timeout=10 -print_final_stats=1 \
    -dict="$source_dir/fuzz/discovery.dict" \
    "$work/corpus" "$source_dir/fuzz/corpus"
for reader in openvpn ppd; do
    "$build/fuzz/fuzz_$reader" -max_total_time=$((seconds / 4)) -timeout=10 -max_len=65536 \
        -print_final_stats=1 "$work/$reader" "$source_dir/fuzz/corpus-$reader"
done
