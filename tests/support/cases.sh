# Sourced by the shell tests: counts cases and ends with the "N passed, N failed" line.
# shellcheck shell=bash
passed=0 failed=0
check() { # check DESCRIPTION COMMAND...: the case passes when COMMAND succeeds
    if "${@:2}"; then
        passed=$((passed + 1))
        echo "PASS: $1"
    else
        failed=$((failed + 1))
        echo "FAIL: $1"
    fi
}
finish() {
    echo "$passed passed, $failed failed"
    [ "$failed" -eq 0 ]
    exit
}
