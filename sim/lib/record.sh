# Sourced by every stand-in of the client's tools (sim/bin). Refuses to run outside the
# simulated client, and records each call in the call log: the tool's name, then each argument
# as " [arg]", with "\", "]" and a line break inside an argument written "\\", "\]" and "\n".
# shellcheck shell=bash

SIM_TOOL=$(basename "$0")
SIM_STATE=/var/lib/sim

if [ ! -e "$SIM_STATE/inside" ]; then
    printf '%s: this stand-in of the client tool only runs inside the simulated client (sim/run)\n' \
        "$SIM_TOOL" >&2
    exit 126
fi

sim_escape() {
    local a=${1//\\/\\\\}
    a=${a//]/\\]}
    printf '%s' "${a//$'\n'/\\n}"
}

# sim_record ARGS...: appends one line for this call to the call log.
sim_record() {
    local line=$SIM_TOOL arg log=${SIM_CALL_LOG:-/var/log/sim/calls.log}
    for arg in "$@"; do
        line+=" [$(sim_escape "$arg")]"
    done
    {
        flock 9
        printf '%s\n' "$line" >&9
    } 9>>"$log"
}

# sim_fail CODE MESSAGE: what the real tool would say, on standard error.
sim_fail() {
    printf '%s: %s\n' "$SIM_TOOL" "$2" >&2
    exit "$1"
}

# Desktop programs run until they are stopped (killall NAME finds them by this script's name:
# the shell itself stays alive, waiting for a child sleep).
sim_stay_alive() {
    local sleeper
    sleep 2147483647 &
    sleeper=$!
    trap 'kill "$sleeper" 2>/dev/null; exit 0' TERM INT HUP
    wait "$sleeper"
}
