#!/usr/bin/env bash
# Builds the project with sanitizers and runs tests under them; any report fails the run.
#   AddressSanitizer + UndefinedBehaviorSanitizer: the whole test suite.
#   ThreadSanitizer: the tests of the windows and the installer's worker thread.
# The suppression files name only the toolkit's own libraries, which are not instrumented.
set -euo pipefail
cd "$(dirname "$0")/.."
here=$PWD

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:fast_unwind_on_malloc=0
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$here/scripts/lsan.supp:print_suppressions=0
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:suppressions=$here/scripts/tsan.supp

configure() {
    cmake -S . -B "$1" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DUSBINSTALLER_SANITIZE="$2"
}

echo "== AddressSanitizer and UndefinedBehaviorSanitizer: every test"
configure build-asan address,undefined
cmake --build build-asan -j2
(cd build-asan && ctest --output-on-failure -j2)

echo "== ThreadSanitizer: the window, dialog and worker tests"
tsan_tests=(test_windows)
configure build-tsan thread
cmake --build build-tsan -j2 --target "${tsan_tests[@]}" sim-getxmlconfig
(cd build-tsan && ctest --output-on-failure -R "^($(IFS='|'; echo "${tsan_tests[*]}"))\$")
