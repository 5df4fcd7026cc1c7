#!/usr/bin/env bash
# Tests of the simulated client itself: sim/run and the stand-ins of the client's tools.
# usage: test_sim.sh [GROUP...]   groups: writes isolation standins options getxmlconfig display
# Runs as root (sim/run needs it). Exit status 0 when every case passed, 1 otherwise, 77 when
# the group cannot run on this machine (skipped). Ends with the line "N passed, M failed".
set -u

source_dir=$(cd "$(dirname "$(readlink -f "$0")")/../.." && pwd)
SIM=$source_dir/sim/run
build_dir=${USBI_BINARY_DIR:-$source_dir/build}
stick=$source_dir/sim/stick

passed=0 failed=0 skipped=0
ok() { passed=$((passed + 1)); printf 'ok   %s\n' "$1"; }
bad() { failed=$((failed + 1)); printf 'FAIL %s\n' "$1"; }
skip() { skipped=$((skipped + 1)); printf 'skip %s\n' "$1"; }
# check DESCRIPTION COMMAND...: the case passes when COMMAND succeeds.
check() {
    local what=$1
    shift
    if "$@"; then ok "$what"; else bad "$what"; fi
}
# check_line DESCRIPTION FILE LINE: FILE holds LINE exactly.
check_line() {
    if grep -qxF -- "$3" "$2"; then
        ok "$1"
    else
        bad "$1"
        printf '     expected the line: %s\n     in %s:\n' "$3" "$2"
        sed 's/^/     | /' "$2"
    fi
}
check_no_line() {
    if grep -qxF -- "$3" "$2"; then
        bad "$1"
        sed 's/^/     | /' "$2"
    else
        ok "$1"
    fi
}
absent() { [ ! -e "$1" ] && [ ! -L "$1" ]; }

if [ "$(id -u)" != 0 ]; then
    echo "skip: the simulated client needs root"
    echo "0 passed, 0 failed"
    exit 77
fi

# Host-side fixtures live in a folder of our own that the sandbox also sees (/tmp is not shared).
work=$(mktemp -d /var/tmp/usbi-simtest.XXXXXX)
host_pids=()
cleanup() {
    local pid
    for pid in "${host_pids[@]}"; do kill "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT
tag=usbi-simtest-$$

# sim OPTIONS... -- COMMAND...: runs sim/run; output in $work/out, $work/err, the report in
# $work/report and the exit status in $rc.
sim() {
    "$SIM" --report "$work/report" --build "$build_dir" "$@" >"$work/out" 2>"$work/err" </dev/null
    rc=$?
}

group_writes() {
    local before after
    for path in /boot/$tag /etc/$tag /config /var/cache/$tag; do
        absent "$path" || { bad "host must not have $path before the test"; return; }
    done
    before=$(md5sum /etc/issue /etc/issue.net 2>/dev/null; ls -d /var/cache/debconf 2>/dev/null)

    sim -- sh -c "set -e
        echo boot >/boot/$tag
        mkdir -p /etc/$tag && echo etc >/etc/$tag/file
        mkdir -p /config/$tag && echo config >'/config/$tag/with blank'
        mkdir -p /var/cache/$tag && echo cache >/var/cache/$tag/file
        echo tree >/tmp/config/files/$tag
        echo changed >>/etc/issue
        rm /etc/issue.net
        rm -rf /var/cache/debconf
        cat /boot/$tag /etc/$tag/file '/config/$tag/with blank' /var/cache/$tag/file /tmp/config/files/$tag
        test -f /var/lib/sim-changes/etc/$tag/file && ! touch /var/lib/sim-changes/x 2>/dev/null"
    check "writes under /boot, /etc, /config, /var/cache and /tmp/config succeed inside" \
        [ "$rc" = 0 ]
    check "the command read back what it wrote, and saw it among the changes, read-only" \
        [ "$(tr '\n' ' ' <"$work/out")" = "boot etc config cache tree " ]
    check_line "report: file added under /boot" "$work/report" "A /boot/$tag"
    check_line "report: folder added under /etc" "$work/report" "A /etc/$tag/"
    check_line "report: file added under /etc" "$work/report" "A /etc/$tag/file"
    check_line "report: new top folder /config" "$work/report" "A /config/"
    check_line "report: file with a blank under /config" "$work/report" "A /config/$tag/with blank"
    check_line "report: file added under /var/cache" "$work/report" "A /var/cache/$tag/file"
    check_line "report: file added under /tmp/config" "$work/report" "A /tmp/config/files/$tag"
    check_line "report: changed file" "$work/report" "M /etc/issue"
    check_line "report: removed file" "$work/report" "D /etc/issue.net"
    if [ -d /var/cache/debconf ]; then
        check_line "report: removed folder" "$work/report" "D /var/cache/debconf/"
    fi
    check_no_line "report: the sim's own logs are not listed as changes" "$work/report" \
        "M /var/log/sim/shell.log"

    for path in /boot/$tag /etc/$tag /config /var/cache/$tag; do
        check "afterwards the host has no $path" absent "$path"
    done
    after=$(md5sum /etc/issue /etc/issue.net 2>/dev/null; ls -d /var/cache/debconf 2>/dev/null)
    check "afterwards the host's changed and removed files are as they were" [ "$before" = "$after" ]

    # The first thing anyone tries.
    if absent /config/x && absent /boot/y; then
        "$SIM" -- sh -c 'mkdir -p /config/x; echo a > /boot/y' 2>"$work/err" >/dev/null
        check "mkdir /config/x and /boot/y: exit status 0" [ $? = 0 ]
        check_line "mkdir /config/x and /boot/y: folder reported" "$work/err" "A /config/x/"
        check_line "mkdir /config/x and /boot/y: file reported" "$work/err" "A /boot/y"
        check "mkdir /config/x and /boot/y: host unchanged" eval 'absent /config/x && absent /boot/y'
    else
        skip "this machine has /config/x or /boot/y"
    fi

    sim --keep "$work/keep" -- sh -c "echo kept >/etc/$tag; freeze"
    check "--keep: the changed files are kept" [ "$(cat "$work/keep/upper/etc/$tag" 2>/dev/null)" = kept ]
    check "--keep: the logs are kept" grep -qxF "freeze" "$work/keep/logs/calls.log"
    check "--keep: the report is kept" grep -qxF "A /etc/$tag" "$work/keep/report.txt"
    "$SIM" --quiet -- sh -c "echo x >/etc/$tag" >"$work/out" 2>"$work/err"
    check "--quiet: no report" [ ! -s "$work/err" ]
}

group_isolation() {
    local name=simhost$$ pid
    # A host process under a unique name (a script's process name is its file name).
    printf '#!/bin/sh\nsleep 600 &\ntrap "kill $!; exit 0" TERM\nwait\n' >"$work/$name"
    chmod 755 "$work/$name"
    "$work/$name" &
    pid=$!
    host_pids+=("$pid")
    sim -- sh -c "killall $name; echo killall=\$?; kill -9 $pid 2>/dev/null; echo kill=\$?
        cp '$work/$name' /tmp/$name && /tmp/$name &
        for i in \$(seq 100); do killall -s 0 $name 2>/dev/null && break; sleep 0.1; done
        killall $name; echo inside=\$?"
    check_line "killall inside finds no host process" "$work/out" "killall=1"
    check_line "kill inside cannot reach a host PID" "$work/out" "kill=1"
    check_line "killall inside stops a process of the sandbox" "$work/out" "inside=0"
    check "the host process survives" kill -0 "$pid"

    for code in 0 3 255; do
        sim -- sh -c "exit $code"
        check "exit status $code is passed through" [ "$rc" = "$code" ]
    done
    sim -- sh -c 'kill -KILL $$'
    check "a command killed by a signal gives 128+signal" [ "$rc" = 137 ]
    sim -- /nonexistent/command
    check "a command that does not exist gives 127" [ "$rc" = 127 ]

    sim -- sh -c 'ls -A /tmp; echo "$USBI_SIM"; pwd'
    check "/tmp inside is fresh: only the client's files" \
        [ "$(head -n 2 "$work/out" | tr '\n' ' ')" = ".config config " ]
    check_line "USBI_SIM=1 inside" "$work/out" "1"
    check_line "the command runs in the caller's folder" "$work/out" "$PWD"

    echo "root:from-stdin" | "$SIM" --quiet -- sh -c 'chpasswd && cat /var/lib/sim/chpasswd' \
        >"$work/out" 2>&1
    check_line "standard input reaches the command" "$work/out" "root:from-stdin"

    # Two sandboxes at once: each sees only its own writes.
    "$SIM" --quiet -- sh -c "echo one >/etc/$tag; sleep 1; cat /etc/$tag" >"$work/one" 2>&1 &
    "$SIM" --quiet -- sh -c "echo two >/etc/$tag; sleep 1; cat /etc/$tag" >"$work/two" 2>&1
    wait $!
    check "concurrent sandboxes do not see each other's writes" \
        [ "$(cat "$work/one")/$(cat "$work/two")" = "one/two" ]

    sim -- sh -c 'vmw-desktop & rdp-desktop &'
    check "a desktop left running does not keep sim/run from returning" [ "$rc" = 0 ]
}

group_standins() {
    sim -- sh -c 'rdpimport /a b/c; /usr/bin/rdpimport "/one arg"; /usr/bin/reload_desktop
        freeze "a]b" "c\d" "line
break" ""'
    check_line "argument splitting is recorded" "$work/report" "  rdpimport [/a] [b/c]"
    check_line "/usr/bin/rdpimport records under its name" "$work/report" "  rdpimport [/one arg]"
    check_line "/usr/bin/reload_desktop records" "$work/report" "  reload_desktop"
    check_line "] \\ and line breaks are escaped" "$work/report" '  freeze [a\]b] [c\\d] [line\nbreak] []'

    sim -- sh -c 'sh -c "rdp-desktop.sh &"
        for i in $(seq 100); do killall -s 0 rdp-desktop.sh 2>/dev/null && break; sleep 0.1; done
        killall -s 0 rdp-desktop.sh && echo alive
        killall rdp-desktop 2>/dev/null; echo other=$?
        killall rdp-desktop.sh && echo killed
        for i in $(seq 100); do killall -s 0 rdp-desktop.sh 2>/dev/null || break; sleep 0.1; done
        killall -s 0 rdp-desktop.sh 2>/dev/null || echo gone'
    check_line "a desktop started with & is alive after its shell returned" "$work/out" "alive"
    check_line "killall of another desktop's name does not stop it" "$work/out" "other=1"
    check_line "killall stops it" "$work/out" "killed"
    check_line "it ends when stopped" "$work/out" "gone"

    sim -- sh -c "cp '$stick/root ca.crt' /tmp/config/files/cacerts/rootca.crt
        certs install rootca.crt; echo install=\$?; certs install missing.crt; echo missing=\$?
        certs register; cat /var/lib/sim/certs/registered
        cp '$stick/Office Printer.ppd' /tmp/config/files/ppd/
        ppddb /tmp/config/files/ppd /tmp/config/files/printdrivers.db; cat /tmp/config/files/printdrivers.db
        tar-upgrade '$stick/firmware-2.1.0.tar'; echo upgrade=\$?
        tar-upgrade /no/such.tar; echo noarchive=\$?; tar-upgrade; echo noarg=\$?
        mkdir -p /tmp/config/files/openvpn/client; cp '$stick/Branch Office.ovpn' /tmp/config/files/openvpn/client/
        ovpn2xml; cat /tmp/config/files/openvpn/openvpn.xml
        ln -s '$stick/beach.jpg' /tmp/wp; setwp /tmp/wp; cat /var/lib/sim/wallpaper
        freeze; freeze; wc -l </var/lib/sim/frozen
        printf 'root:secret\nbroken\n' | chpasswd; echo chpasswd=\$?; cat /var/lib/sim/chpasswd"
    check_line "certs install succeeds" "$work/out" "install=0"
    check_line "certs install of a missing file fails" "$work/out" "missing=1"
    check "certs install copies into the installed store" grep -qxF "A /var/lib/sim/certs/rootca.crt" "$work/report"
    check_line "certs register lists the installed certificates" "$work/out" "rootca.crt"
    check_line "ppddb lists the driver with its model" "$work/out" "$(printf 'Office Printer.ppd\tExample Office Laser 2000')"
    check_line "tar-upgrade accepts a readable archive" "$work/out" "upgrade=0"
    check_line "tar-upgrade refuses a missing archive" "$work/out" "noarchive=1"
    check_line "tar-upgrade refuses no argument" "$work/out" "noarg=1"
    check_line "ovpn2xml lists the client configurations" "$work/out" '    <client file="Branch Office.ovpn"/>'
    check_line "setwp records the file shown, through the link" "$work/out" "$stick/beach.jpg"
    check_line "freeze appends one line per call" "$work/out" "2"
    check_line "chpasswd refuses a line without a password" "$work/out" "chpasswd=1"
    check_line "chpasswd records the name:password line" "$work/out" "root:secret"

    bash "$source_dir/sim/bin/freeze" >/dev/null 2>&1
    check "a stand-in refuses to run outside the sandbox" [ $? = 126 ]
}

group_options() {
    sim -- sh -c 'cat "$DAX_CONFIG_ROOT/user/system/security/config.xml"
        test -e /tmp/.mvyx64 && echo marker; test -e /boot/modality && echo modality
        echo "legacy=${DAX_LEGACY_MODE-unset}"; wpasswd; echo wpasswd=$?
        test -f "$DAX_CONFIG_ROOT/user/software/imprivata/config.xml" && echo imprivata
        test -f "$DAX_CONFIG_ROOT/user/system/desktop/config.xml" && echo desktop
        test -d /tmp/config/files/cacerts && test -d /tmp/config/files/ppd && echo tree
        test -s /tmp/.config/default.css && echo css
        test "$DAX_SHELL_LOG" = /var/log/sim/shell.log && test -f "$DAX_SHELL_LOG" && echo shelllog
        test "$SIM_CALL_LOG" = /var/log/sim/calls.log && echo calllog'
    check_line "the store starts in the store format" "$work/out" '<?xml version="1.0" encoding="UTF-8"?>'
    check_line "the gate is off by default" "$work/out" '    <entry key="enableterminalpass">false</entry>'
    check_no_line "no marker by default" "$work/out" "marker"
    check_no_line "no /boot/modality by default" "$work/out" "modality"
    check_line "not legacy by default" "$work/out" "legacy=unset"
    check_line "the imprivata store exists" "$work/out" "imprivata"
    check_line "the desktop store exists" "$work/out" "desktop"
    check_line "the configuration tree has cacerts and ppd" "$work/out" "tree"
    check_line "the sample style sheet exists" "$work/out" "css"
    check_line "DAX_SHELL_LOG names the shell log" "$work/out" "shelllog"
    check_line "SIM_CALL_LOG names the call log" "$work/out" "calllog"

    DAX_LEGACY_MODE=1 sim -- sh -c 'echo "legacy=${DAX_LEGACY_MODE-unset}"'
    check_line "the caller's legacy setting does not leak in" "$work/out" "legacy=unset"

    sim --legacy --marker --modality 'ZUL-M lab' --gate 1 -- sh -c '
        cat "$DAX_CONFIG_ROOT/user/system/security/config.xml"; test -e /tmp/.mvyx64 && echo marker
        printf "ZUL-M lab\\n" | cmp -s - /boot/modality && echo modality; echo "legacy=${DAX_LEGACY_MODE-unset}"
        wpasswd; echo wpasswd=$?'
    check_line "--gate turns the gate on" "$work/out" '    <entry key="enableterminalpass">true</entry>'
    check_line "--gate 1: wpasswd exits 1" "$work/out" "wpasswd=1"
    check_line "--marker creates /tmp/.mvyx64" "$work/out" "marker"
    check_line "--modality writes the text and a line break" "$work/out" "modality"
    check_line "--legacy sets DAX_LEGACY_MODE=1" "$work/out" "legacy=1"
    check_no_line "the initial state is not reported as a change" "$work/report" "A /boot/modality"
    check_no_line "the marker is not reported as a change" "$work/report" "A /tmp/.mvyx64"

    sim --gate 0 -- sh -c 'wpasswd; echo wpasswd=$?'
    check_line "--gate 0: wpasswd exits 0" "$work/out" "wpasswd=0"
    sim --gate missing -- sh -c 'cat "$DAX_CONFIG_ROOT/user/system/security/config.xml"
        command -v wpasswd || echo notfound; wpasswd 2>/dev/null; echo wpasswd=$?; freeze && echo others'
    check_line "--gate missing: the gate is on" "$work/out" '    <entry key="enableterminalpass">true</entry>'
    check_line "--gate missing: no wpasswd on PATH" "$work/out" "notfound"
    check_line "--gate missing: running it fails as not found" "$work/out" "wpasswd=127"
    check_line "--gate missing: the other stand-ins are there" "$work/out" "others"

    sim --gate maybe -- true
    check "a bad option value is refused with 125" [ "$rc" = 125 ]
    sim --no-such-option -- true
    check "an unknown option is refused with 125" [ "$rc" = 125 ]
}

group_getxmlconfig() {
    if [ ! -x "$build_dir/sim-tools/getxmlconfig" ]; then
        bad "the compiled getxmlconfig is built in $build_dir/sim-tools (target sim-getxmlconfig)"
        return
    fi
    printf 'Authorised use only.\n' >"$work/disclaimer"
    sim -- sh -c "getxmlconfig -w user/system/desktop WALLPAPER '/tmp/config/files/wallpapers/my picture.jpg'
        getxmlconfig -r user/system/desktop WALLPAPER
        getxmlconfig -wff user/system/desktop DISCLAIMER '$work/disclaimer'
        getxmlconfig -r user/system/desktop DISCLAIMER
        cat \"\$DAX_CONFIG_ROOT/user/system/desktop/config.xml\""
    check "getxmlconfig -w/-wff/-r succeed" [ "$rc" = 0 ]
    check_line "-r reads back what -w wrote" "$work/out" "/tmp/config/files/wallpapers/my picture.jpg"
    check_line "-r reads back the file given to -wff" "$work/out" "Authorised use only."
    check_line "the store file holds the entry" "$work/out" \
        '    <entry key="WALLPAPER">/tmp/config/files/wallpapers/my picture.jpg</entry>'
    check_line "the store file is in the store format" "$work/out" '<?xml version="1.0" encoding="UTF-8"?>'
    check_line "the call is recorded" "$work/report" \
        "  getxmlconfig [-w] [user/system/desktop] [WALLPAPER] [/tmp/config/files/wallpapers/my picture.jpg]"
    check_line "the store change is reported" "$work/report" \
        "M /var/lib/dax/config/user/system/desktop/config.xml"
    sim --build "$work/no-build" -- getxmlconfig -r user/system/desktop WALLPAPER
    check "without the compiled tool: 127 and a message" \
        eval '[ "$rc" = 127 ] && grep -q "not built" "$work/err"'
}

group_display() {
    if ! command -v Xvfb >/dev/null || ! command -v xdpyinfo >/dev/null; then
        skip "--display needs Xvfb and xdpyinfo (xvfb, x11-utils)"
        return
    fi
    local n pid i
    for n in $(seq $((50 + $$ % 200)) 400); do
        [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break
    done
    Xvfb ":$n" -nolisten tcp >/dev/null 2>&1 &
    pid=$!
    host_pids+=("$pid")
    for i in $(seq 100); do [ -S "/tmp/.X11-unix/X$n" ] && break; sleep 0.1; done
    sim --display ":$n" -- sh -c 'echo "DISPLAY=$DISPLAY"; xdpyinfo >/dev/null && echo connected'
    check_line "--display sets DISPLAY" "$work/out" "DISPLAY=:$n"
    check_line "--display: a client inside reaches the host's X server" "$work/out" "connected"
    DISPLAY=":$n" sim -- sh -c "echo \"DISPLAY=\${DISPLAY-unset}\"; xdpyinfo -display :$n >/dev/null 2>&1 || echo refused"
    check_line "without --display there is no DISPLAY" "$work/out" "DISPLAY=unset"
    check_line "without --display the host's X server is out of reach" "$work/out" "refused"
    kill "$pid" 2>/dev/null
}

groups=("$@")
[ ${#groups[@]} -gt 0 ] || groups=(writes isolation standins options getxmlconfig display)
for group in "${groups[@]}"; do
    declare -F "group_$group" >/dev/null || { bad "unknown test group '$group'"; continue; }
    printf -- '-- %s\n' "$group"
    "group_$group"
done

[ "$skipped" = 0 ] || printf '%d skipped\n' "$skipped"
printf '%d passed, %d failed\n' "$passed" "$failed"
[ "$failed" = 0 ] || exit 1
[ "$passed" -gt 0 ] || exit 77
exit 0
