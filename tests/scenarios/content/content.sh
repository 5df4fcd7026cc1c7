# Steps of the content check's scenarios (sourced by them): the stick gets one folder of files
# checked in beside this script, and the check's findings are shown without the installation
# plans, which other scenarios check. Certificates are judged on a fixed day. The report is
# filtered after the check has ended, then its standard error follows: a filter in a pipe would
# race the check's own error line.
# shellcheck shell=bash disable=SC2154 # source_dir, stick and work: set by the scenario driver
fixtures() { cp -- "$source_dir/tests/scenarios/content/$1"/* "$stick/"; }
# filtered FILTER ARGS...: the check on the stick, its report through FILTER, then its errors
filtered() {
    bash -c 'out=$1 filter=$2
        shift 2
        usb-stick-check "$@" >"$out" 2>"$out.err"
        status=$?
        eval "$filter" <"$out" && cat "$out.err"
        exit $status' - "$work/content" "$@" "$stick"
}
content() { step "content$(words "$@")" filtered 'sed "/^Installations/,/^\$/d"' --date 2026-06-01 "$@"; }
# The JSON's entries that were read, one a line, then whether the whole document fits the schema.
content_json() {
    local validate
    validate=$(printf '%q ' "$source_dir/tests/support/validate-json.py" "$source_dir/doc/installation.schema.json")
    step "content --json$(words "$@")" \
        filtered "jq -c '.entries[] | select(.content) | {name, content}' <\"\$out\" && $validate\"\$out\"" \
        --json --date 2026-06-01 "$@"
}
