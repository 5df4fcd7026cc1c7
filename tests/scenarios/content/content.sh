# Steps of the content check's scenarios (sourced by them): the stick gets one folder of files
# checked in beside this script, and the check's findings are shown without the installation
# plans, which other scenarios check. Certificates are judged on a fixed day.
# shellcheck shell=bash disable=SC2154 # source_dir and stick: set by the scenario driver
fixtures() { cp -- "$source_dir/tests/scenarios/content/$1"/* "$stick/"; }
content() {
    step "content$(words "$@")" bash -c 'set -o pipefail
        usb-stick-check --date 2026-06-01 "$@" | sed "/^Installations/,/^\$/d"' - "$@" "$stick"
}
content_json() {
    step "content --json$(words "$@")" bash -c 'set -o pipefail
        usb-stick-check --json --date 2026-06-01 "$@" | jq -c ".entries[] | select(.content) | {name, content}"' \
        - "$@" "$stick"
}
