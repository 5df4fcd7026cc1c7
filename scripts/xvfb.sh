# Sourced by the scripts that show the program on an X server inside the simulated client,
# whose network namespace is its own, so any display number is free.
# shellcheck shell=bash
# start_xvfb: starts a 1024x768 virtual X server and exports DISPLAY; 1 when it did not start.
start_xvfb() {
    local file
    file=$(mktemp /dev/shm/xvfb-display.XXXXXX) || return 1
    Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 1024x768x24 3>"$file" 2>/dev/null &
    for _ in $(seq 300); do [ -s "$file" ] && break; sleep 0.1; done
    [ -s "$file" ] || return 1
    DISPLAY=:$(head -n 1 "$file")
    export DISPLAY
}
