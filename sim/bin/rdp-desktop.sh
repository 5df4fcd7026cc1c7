#!/bin/bash
# Stand-in for the client's desktop program rdp-desktop.sh: stays alive until it is stopped.
. "$(dirname "$(readlink -f "$0")")/../lib/record.sh"
sim_record "$@"
sim_stay_alive
