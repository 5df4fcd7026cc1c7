#!/usr/bin/env bash
# The simulated client's own guarantees: writes stay inside and are reported, killall inside
# cannot reach the host, the client-state options, the call log, the client's name, zone,
# language and home, --time, valid font caches, --display.
# Needs root.
set -u
source_dir=$(cd "$(dirname "$(readlink -f "$0")")/../.." && pwd)
source "$source_dir/tests/support/cases.sh"
[ "$(id -u)" = 0 ] || { echo "skip: the simulated client needs root"; exit 77; }

# Host-side files live in a folder the sandbox also sees (the host's /tmp is hidden inside).
work=$(mktemp -d /var/tmp/usbi-simtest.XXXXXX)
host_pids=()
trap 'kill "${host_pids[@]}" 2>/dev/null; rm -rf "$work"' EXIT
tag=usbi-simtest-$$
# sim OPTIONS... -- COMMAND...: output in $work/out, report in $work/report, status in $rc.
sim() {
    "$source_dir/sim/run" --report "$work/report" --build "${USBI_BINARY_DIR:-$source_dir/build}" \
        "$@" >"$work/out" 2>"$work/err" </dev/null
    rc=$?
}
is() { [ "$(cat "$work/$1")" = "$2" ] || { diff <(echo "$2") "$work/$1"; return 1; }; }

# shellcheck disable=SC2034 # read by the check below, through eval
before=$(md5sum /etc/issue /etc/issue.net)
sim -- sh -c "echo boot >/boot/$tag && mkdir /config /etc/$tag && echo x >'/etc/$tag/a b'
    echo >>/etc/issue; rm /etc/issue.net; cat /var/lib/sim-changes/boot/$tag
    echo 'sync; mkdir -p /x' >>\"\$DAX_SHELL_LOG\"
    rdpimport /a b/c; /usr/bin/reload_desktop; freeze 'a]b' 'c\\d' 'line
break' ''; rdp-desktop &
    until grep -q '^rdp-desktop' \"\$SIM_CALL_LOG\"; do sleep 0.05; done; exit 3"
check "the command's status comes back, a desktop left running notwithstanding" [ "$rc" = 3 ]
check "the write landed among the changes the command can see" is out boot
check "the report lists the changes, the logs with each argument in brackets, the status" \
    is report "== changes (A added, M changed, D removed)
A /boot/$tag
A /config/
M /etc/issue
D /etc/issue.net
A /etc/$tag/
A /etc/$tag/a b
A /var/lib/sim/desktop-reloads
A /var/lib/sim/frozen
== shell log (/var/log/sim/shell.log)
  sync; mkdir -p /x
== tool calls (/var/log/sim/calls.log)
  rdpimport [/a] [b/c]
  reload_desktop
  freeze [a\\]b] [c\\\\d] [line\\nbreak] []
  rdp-desktop
== exit status 3"
check "the host is unchanged" eval '[ ! -e /boot/$tag ] && [ ! -e /config ] && [ ! -e /etc/$tag ] &&
    [ "$(md5sum /etc/issue /etc/issue.net)" = "$before" ]'
bash "$source_dir/sim/bin/freeze" >/dev/null 2>&1
check "a stand-in refuses to run outside the sandbox" [ $? = 126 ]

# A host process under a name of its own (a script's process name is its file name).
name=simhost$$
printf '#!/bin/sh\nsleep 600 &\ntrap "kill $!; exit 0" TERM\nwait\n' >"$work/$name"
chmod 755 "$work/$name"
"$work/$name" &
host_pids+=($!)
sim -- sh -c "killall $name; kill -9 ${host_pids[0]}; echo \$?
    cp '$work/$name' /tmp/ && /tmp/$name &
    for i in \$(seq 50); do killall -s 0 $name 2>/dev/null && break; sleep 0.1; done; killall $name; echo \$?"
check "killall and kill inside cannot reach a host process, killall stops one inside" \
    eval 'is out "1
0" && kill -0 ${host_pids[0]}'

probe='grep -o "terminalpass\">[a-z]*" "$DAX_CONFIG_ROOT/user/system/security/config.xml"
    cat /boot/modality; test -e /tmp/.mvyx64 && echo marker; echo "${DAX_LEGACY_MODE-unset}"
    wpasswd; echo "wpasswd $?"'
DAX_LEGACY_MODE=1 sim -- sh -c "$probe"
check "by default: gate off, no modality, no marker, not legacy" \
    is out $'terminalpass">false\nunset\nwpasswd 0'
sim --legacy --marker --modality 'ZUL-M lab' --gate 3 -- sh -c "$probe"
check "--legacy, --marker, --modality TEXT, --gate CODE" \
    is out $'terminalpass">true\nZUL-M lab\nmarker\n1\nwpasswd 3'
check "the client's starting state is not reported as a change" \
    eval '! grep -E "^A /(boot/modality|tmp/.mvyx64)" "$work/report"'
sim --gate missing -- sh -c "$probe"
check "--gate missing: gate on, no wpasswd" is out $'terminalpass">true\nunset\nwpasswd 127'

# The client's own name, zone, language, home and runtime folder, whatever the caller's are;
# --time stops the wall clock (timeouts still end).
(umask 077; LC_ALL=C.UTF-8 TZ=Asia/Tokyo XDG_CACHE_HOME=/var/tmp sim --time '2026-01-15 12:00:00' -- sh -c \
    'uname -n; date; sleep 0.2; date +%s; timeout 0.2 sleep 9; echo "timeout $?"; ls -A /root; umask
    echo "$HOME $LANG ${LC_ALL-} ${TZ-} ${XDG_CACHE_HOME-} $XDG_RUNTIME_DIR"')
check "a host name, zone, language, umask and empty home of the client's, and --time" is out "sim-client
Thu Jan 15 12:00:00 UTC 2026
1768478400
timeout 124
0022
/root C.UTF-8    /run/user/0"
sim -- date +%Y
check "without --time the clock is the host's" is out "$(date +%Y)"

# The program's font library rewrites a cache it finds stale; on the client none is.
fonts_time=$(stat -c %y /usr/share/fonts)
for option in '' --time=@1768478400 --stale-font-cache; do
    sim $option -- sh -c 'stat -c %y /usr/share/fonts; fc-list >/dev/null'
    check "${option:-by default}: the font caches are valid, the font library rewrites none" \
        eval "! grep -q fontconfig $work/report"
done
check "--stale-font-cache: the fonts look newer than the host's caches" [ "$(cat "$work/out")" != "$fonts_time" ]

if command -v Xvfb >/dev/null && command -v xdpyinfo >/dev/null; then
    for n in $(seq $((50 + $$ % 200)) 400); do
        [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break
    done
    Xvfb ":$n" -nolisten tcp >/dev/null 2>&1 &
    host_pids+=($!)
    for _ in $(seq 100); do [ -S "/tmp/.X11-unix/X$n" ] && break; sleep 0.1; done
    sim --display ":$n" -- sh -c 'echo "$DISPLAY"; xdpyinfo >/dev/null && echo connected'
    check "--display: DISPLAY is set and the host's X server answers" is out ":$n"$'\nconnected'
    DISPLAY=":$n" sim -- sh -c "echo \${DISPLAY-unset}; xdpyinfo -display :$n || echo refused"
    check "without --display: no DISPLAY, no X server" is out $'unset\nrefused'
else
    echo "skip: --display needs Xvfb and xdpyinfo (packages xvfb, x11-utils)"
fi
finish
