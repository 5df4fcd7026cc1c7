# Sourced by the scripts that show the program on an X server inside the simulated client,
# whose network namespace is its own, so any display number is free.
# shellcheck shell=bash
# start_xvfb: starts a virtual X server of XVFB_SIZE (default 1024x768) and exports DISPLAY; 1
# when it did not start. The server never resets when its last client leaves, so that
# resources set with xrdb (Xft.dpi) stay and its keymap is written once, before anything runs.
start_xvfb() {
    local file
    file=$(mktemp /dev/shm/xvfb-display.XXXXXX) || return 1
    Xvfb -displayfd 3 -nolisten tcp -noreset -screen 0 "${XVFB_SIZE:-1024x768}x24" 3>"$file" 2>/dev/null &
    for _ in $(seq 300); do [ -s "$file" ] && break; sleep 0.1; done
    [ -s "$file" ] || return 1
    DISPLAY=:$(head -n 1 "$file")
    export DISPLAY
}
