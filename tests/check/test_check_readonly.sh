#!/usr/bin/env bash
# The stick check on the sample stick as an unprivileged user, in a read-only copy, inside the
# simulated client: the client's change report holds the copy made for the test and nothing
# else, no shell command and no tool call; /dev/shm, which the report does not cover, stays
# empty.
# Usage: test_check_readonly.sh SOURCE_DIR BUILD_DIR
set -uo pipefail
source_dir=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$source_dir/sim/run" --build "$build" --report "$work/report" -- bash -c '
    cp -a "$1/sim/stick" /var/tmp/stick && chmod -R a-w /var/tmp/stick || exit 125
    cd / && HOME=/nonexistent setpriv --reuid=nobody --regid=nogroup --clear-groups \
        "$2/usb-stick-check" /var/tmp/stick || exit
    [ -z "$(ls -A /dev/shm)" ] || { echo "written to /dev/shm: $(ls -A /dev/shm)" >&2; exit 99; }
' check "$source_dir" "$build" >"$work/out"
status=$?

source "$source_dir/tests/support/cases.sh"
copy_only() {
    local expected
    expected=$( (echo "A /var/tmp/stick/" && ls -A "$source_dir/sim/stick" | sed 's|^|A /var/tmp/stick/|') | sort)
    [ "$(sed -n '/^== changes/,/^== shell log/p' "$work/report" | grep '^[AMD] ' | sort)" = "$expected" ] ||
        { cat "$work/report"; return 1; }
}
check "run as nobody, exit status 0" [ "$status" -eq 0 ]
check "the report offers the sample stick's picture" grep -q '^  beach\.jpg  *Desktop Image' "$work/out"
check "nothing changed but the copy made for the test" copy_only
check "no shell command and no tool call" \
    [ "$(grep -c '^  (none)$' "$work/report")" -eq 2 ]
finish
