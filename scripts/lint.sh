#!/usr/bin/env bash
# The style checks CI enforces: clang-format over every C++ source, clang-tidy with the
# checked-in .clang-tidy over the program's sources, shellcheck over every shell script and
# shell library. Prints each finding and fails when there is one.
#   scripts/lint.sh [BUILD_DIR]   (default build: a configured and built tree, for its
#                                  compile_commands.json and generated form headers)
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build}
status=0
step() { echo "lint: $1"; }

step "clang-format"
mapfile -t cxx < <(git ls-files '*.cpp' '*.h')
clang-format --dry-run -Werror "${cxx[@]}" || status=1

# The program's sources; the headers they include are checked through HeaderFilterRegex.
step "clang-tidy"
[ -f "$build/compile_commands.json" ] || { echo "lint: $build/compile_commands.json is missing"; exit 1; }
mapfile -t program < <(git ls-files '*.cpp' | grep -E '^(app|check|discovery|installers|platform|record|security|ui)/')
printf '%s\0' "${program[@]}" |
    xargs -0 -n 4 -P 2 clang-tidy -p "$build" --quiet --warnings-as-errors='*' \
        2> >(grep -Ev '^[0-9]+ warnings? (and [0-9]+ errors? )?generated\.$' >&2) ||
    status=1

# Scripts by their interpreter line, libraries by their "# shellcheck shell=" line; every *.sh
# must be one of the two, so that a new library cannot slip past unchecked.
step "shellcheck"
scripts=()
while IFS= read -r file; do
    if head -n 1 "$file" | grep -Eq '^#!.*[/ ](ba|da)?sh( |$)' ||
        grep -Eq '^# shellcheck shell=' "$file"; then
        scripts+=("$file")
    elif [[ $file == *.sh ]]; then
        echo "$file: neither an interpreter line nor a '# shellcheck shell=bash' line"
        status=1
    fi
done < <(git ls-files | while IFS= read -r f; do [ -f "$f" ] && grep -Iq . "$f" && echo "$f"; done)
shellcheck -x "${scripts[@]}" || status=1

[ "$status" -eq 0 ] && echo "lint: clean"
exit "$status"
