#!/usr/bin/env bash
# The first process of the simulated client's namespaces, started by sim/run (which passes the
# settings in _SIM_* variables). Builds the client's initial state in a baseline layer, mounts
# the copy-on-write root, runs the command in it, then reports and optionally keeps what changed.
# When this process ends, the kernel kills everything left in the PID namespace and the scratch
# file system disappears with the mount namespace.
set -u

fail() {
    printf 'sim/run: %s\n' "$*" >&2
    exit 125
}

S=$_SIM_SCRATCH
sim_bin=$_SIM_DIR/bin
config_root=/var/lib/dax/config
log_dir=/var/log/sim
state_dir=/var/lib/sim
client_name=sim-client

mount -t tmpfs -o mode=0755 usbi-sim "$S" || fail "cannot mount a tmpfs for the scratch folder"
base=$S/base     # the client's initial state, laid over the host's file system
upper=$S/upper   # everything the command changes
root=$S/root     # what the command sees
before=$S/before # read-only view of the state before the command
mkdir -p "$base" "$upper" "$S/work" "$root" "$before" "$S/stub/tmp" "$S/stub/root" "$S/stub-work" "$S/stub-root"

# /tmp and root's home /root must start fresh and empty: opaque folders in the baseline hide the
# host's (the home holds the toolkit's settings and caches, the fonts of the user). The kernel
# makes a directory opaque when it is created where a lower one was removed.
mount -t overlay usbi-sim-stub -o "lowerdir=$S/stub,upperdir=$base,workdir=$S/stub-work" \
    "$S/stub-root" 2>/dev/null ||
    fail "cannot mount an overlay file system on a tmpfs (is overlayfs available to this kernel?)"
for dir in tmp root; do
    rmdir "$S/stub-root/$dir" && mkdir "$S/stub-root/$dir" || fail "cannot create the fresh /$dir"
done
umount "$S/stub-root"
chmod 1777 "$base/tmp"
chmod 0700 "$base/root"

# Where a host path lives in the baseline (in $file): its folders resolved through the host's
# symbolic links (e.g. /bin -> usr/bin), so that the baseline never shadows a link with a
# folder. Everything below /tmp and /root is the baseline's own.
declare -A resolved=()
mkd() { [ -d "$1" ] || mkdir -p "$1"; }
in_base() {
    local dir=${1%/*}
    case $1 in
        /tmp|/tmp/*|/root|/root/*) file=$base$1; return ;;
    esac
    [ -n "${resolved[$dir]+set}" ] || resolved[$dir]=$(readlink -m "${dir:-/}")
    file=$base${resolved[$dir]%/}/${1##*/}
}
put() { # put PATH CONTENT: a file of the initial state
    in_base "$1"
    mkd "${file%/*}" && printf '%s' "$2" >"$file" || fail "cannot create $1 in the baseline"
}
put_dir() {
    in_base "$1"
    mkd "$file" || fail "cannot create $1 in the baseline"
}
put_link() { # put_link PATH TARGET
    in_base "$1"
    mkd "${file%/*}" && ln -s "$2" "$file" || fail "cannot create $1 in the baseline"
}
hide() { # a host file that the client does not have (an overlay whiteout)
    [ -e "$1" ] || [ -L "$1" ] || return 0
    in_base "$1"
    mkd "${file%/*}" && mknod "$file" c 0 0 || fail "cannot hide $1"
}
store() { # store PATH [KEY VALUE]...: a configuration store in the platform's XML format
    local path=$1 xml
    shift
    xml=$'<?xml version="1.0" encoding="UTF-8"?>\n<config>\n'
    while [ $# -ge 2 ]; do
        xml+="    <entry key=\"$1\">$2</entry>"$'\n'
        shift 2
    done
    xml+=$'</config>\n'
    put "$config_root/$path/config.xml" "$xml"
}

# The client's initial state.
gate_on=false
[ -n "$_SIM_GATE" ] && gate_on=true
store user/system/security enableterminalpass "$gate_on"
store user/system/desktop
store user/software/imprivata
put_dir /tmp/config/files/cacerts
put_dir /tmp/config/files/ppd
put /tmp/.config/default.css '/* Sample style sheet of the simulated client */
QWidget {
    font-size: 10pt;
}
QPushButton {
    min-width: 72px;
}
'
put "$log_dir/shell.log" ''
put "$log_dir/calls.log" ''
put "$log_dir/journal.log" ''
put "$log_dir/syslog.log" ''
put_dir "$state_dir/certs"
put_dir /var/lib/sim-changes
if [ "$_SIM_NO_JOURNAL" = 1 ]; then
    hide /run/systemd/journal
else
    put_dir /run/systemd/journal
fi
put "$state_dir/inside" $'This folder exists only inside the simulated client.\n'
# The client's own name, time zone and runtime folder.
put /etc/hostname "$client_name"$'\n'
put /etc/hosts "127.0.0.1 localhost
127.0.1.1 $client_name
::1 localhost ip6-localhost ip6-loopback
"
put_link /etc/localtime /usr/share/zoneinfo/Etc/UTC
put /etc/timezone $'Etc/UTC\n'
put_dir /run/user/0
chmod 0700 "$file"
put_link /usr/bin/rdpimport "$sim_bin/rdpimport"
put_link /usr/bin/reload_desktop "$sim_bin/reload_desktop"
case $_SIM_GATE in
    missing)
        put "$state_dir/wpasswd-exit" ''
        IFS=: read -r -a path_dirs <<<"$sim_bin:${PATH:-}"
        for dir in "${path_dirs[@]}"; do
            [ -n "$dir" ] && hide "$(readlink -m "$dir")/wpasswd"
        done
        ;;
    '') put "$state_dir/wpasswd-exit" $'0\n' ;;
    *) put "$state_dir/wpasswd-exit" "$_SIM_GATE"$'\n' ;;
esac
[ "$_SIM_MARKER" = 1 ] && put /tmp/.mvyx64 ''
if [ "$_SIM_HAVE_MODALITY" = 1 ]; then
    put /boot/modality "$_SIM_MODALITY"$'\n'
else
    hide /boot/modality
fi
if [ -n "$_SIM_DISPLAY" ]; then
    put_dir /tmp/.X11-unix
    xauth_file=
    if [ -n "${XAUTHORITY:-}" ] && [ -f "$XAUTHORITY" ]; then
        xauth_file=$(readlink -f "$XAUTHORITY")
        case $xauth_file in /tmp/*) put "$xauth_file" '' ;; *) xauth_file= ;; esac
    fi
fi

if [ "$_SIM_STALE_FONTS" = 1 ]; then
    # Every font folder newer than its cache, as on a machine whose fonts changed after its
    # caches were last built: a folder of the baseline lends the merged one its time.
    while IFS= read -r -d '' dir; do
        put_dir "$dir"
    done < <(find /usr/share/fonts /usr/local/share/fonts -type d -print0 2>/dev/null)
fi

# The host's /root is hidden: a source, build or working folder inside it is shown read-only, as
# one on another file system is (its folder is part of the starting state).
home_binds=()
while IFS= read -r path; do
    case $path in /root/*) ;; *) continue ;; esac
    for bound in "${home_binds[@]}"; do
        case $path/ in "$bound"/*) continue 2 ;; esac
    done
    home_binds+=("$path")
    put_dir "$path"
done < <(for path in "${_SIM_DIR%/*}" "$_SIM_BUILD" "$_SIM_CWD"; do
    [ -e "$path" ] && readlink -f -- "$path"
done | awk '{ print length, $0 }' | sort -n | cut -d' ' -f2-)

# The client's font caches are valid, as on a client, whatever state the host's are in: the
# toolkit's font library would otherwise rewrite stale ones under /var/cache/fontconfig during
# the command, and every transcript would record it. fc-cache rebuilds, in the baseline, only
# the caches that do not match the fonts.
if command -v fc-cache >/dev/null 2>&1; then
    mkdir -p "$S/fonts-work" "$S/fonts-root"
    mount -t overlay usbi-sim-fonts -o "lowerdir=/,upperdir=$base,workdir=$S/fonts-work" \
        "$S/fonts-root" || fail "cannot mount the overlay that builds the font caches"
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root chroot "$S/fonts-root" fc-cache --system-only ||
        fail "cannot build the client's font caches (fc-cache failed)"
    umount "$S/fonts-root"
fi

mount -t overlay usbi-sim -o "lowerdir=$base:/,upperdir=$upper,workdir=$S/work" "$root" ||
    fail "cannot mount the copy-on-write root (overlay with the host's / as lower layer)"
mount -t overlay usbi-sim-before -o "lowerdir=$base:/" "$before" ||
    fail "cannot mount the read-only view of the initial state"

# Kernel file systems: a proc of the new PID namespace, a read-only /sys, and a /dev of its own
# with the usual devices (so that nothing written under /dev reaches the host).
mount -t proc proc "$root/proc" || fail "cannot mount /proc for the PID namespace"
printf '%s' "$client_name" >/proc/sys/kernel/hostname && printf '(none)' >/proc/sys/kernel/domainname ||
    fail "cannot name the client (host-name namespace)"
mount --rbind /sys "$root/sys" && mount -o remount,bind,ro "$root/sys" 2>/dev/null
mount -t tmpfs -o mode=0755 usbi-sim-dev "$root/dev" || fail "cannot mount /dev"
for dev in null zero full random urandom tty; do
    [ -e "/dev/$dev" ] || continue
    : >"$root/dev/$dev" && mount --bind "/dev/$dev" "$root/dev/$dev"
done
mkdir -p "$root/dev/pts" "$root/dev/shm"
if mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$root/dev/pts" 2>/dev/null; then
    ln -s pts/ptmx "$root/dev/ptmx"
else
    mount --rbind /dev/pts "$root/dev/pts"
    : >"$root/dev/ptmx" && mount --bind /dev/ptmx "$root/dev/ptmx"
fi
mount -t tmpfs -o mode=1777 usbi-sim-shm "$root/dev/shm"
ln -s /proc/self/fd "$root/dev/fd"
ln -s /proc/self/fd/0 "$root/dev/stdin"
ln -s /proc/self/fd/1 "$root/dev/stdout"
ln -s /proc/self/fd/2 "$root/dev/stderr"

# The system log: listeners on the journal's socket and on /dev/log write what the command
# sends into the logs folder, which no transcript watches; the sockets live on file systems of
# their own, so they are no change of the command's. With --no-journal the client has no
# journal: only /dev/log listens.
logsink=$_SIM_BUILD/sim-tools/logsink
journal_socket=$root/run/systemd/journal/socket
if [ "$_SIM_NO_JOURNAL" = 1 ]; then
    journal_socket=$S/no-journal.socket
else
    mount -t tmpfs -o mode=0755 usbi-sim-journal "$root/run/systemd/journal" ||
        fail "cannot mount a folder for the journal's socket"
fi
# The listener runs here, outside the command's root, where /proc is not the namespace's own: a
# sanitizer build's leak check, which reads /proc/PID/task at exit, cannot work (the sanitizer
# runs are about the program, not the listener).
run_logsink() { ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0 "$logsink" "$@"; }
if [ -x "$logsink" ]; then
    run_logsink "$journal_socket" "$root$log_dir/journal.log" "$root/dev/log" \
        "$root$log_dir/syslog.log" || fail "cannot listen on the system log's sockets"
else
    printf 'sim/run: %s is not built: nothing listens on the system log\n' "$logsink" >&2
    logsink=
fi

# What the command has changed so far, for tests that check where writes landed: the upper
# layer, read-only (a removed file shows there as a character device 0/0).
changes_view=$root/var/lib/sim-changes
mount --bind "$upper" "$changes_view" && mount -o remount,bind,ro "$changes_view" ||
    fail "cannot show the changes inside"

if [ -n "$_SIM_DISPLAY" ]; then
    # Path sockets work across network namespaces (the abstract ones do not, and X clients
    # fall back to the path), so the network stays private. Read-only: connecting is allowed,
    # an X server started inside cannot put its socket there.
    mount --bind /tmp/.X11-unix "$root/tmp/.X11-unix" &&
        mount -o remount,bind,ro "$root/tmp/.X11-unix" || fail "cannot give access to /tmp/.X11-unix"
    if [ -n "$xauth_file" ]; then
        mount --bind "$xauth_file" "$root$xauth_file" || fail "cannot give access to $xauth_file"
    fi
fi

for path in "${home_binds[@]}"; do
    mount --bind "$path" "$root$path" && mount -o remount,bind,ro "$root$path" ||
        fail "cannot show $path inside"
done

# The overlay shows the root file system only. When the sources, the build or the working
# folder live on another file system (a CI volume, say), that one is shown read-only.
for path in "$_SIM_DIR" "$_SIM_BUILD" "$_SIM_CWD"; do
    [ -e "$path" ] || continue
    mp=$(stat -c %m -- "$path" 2>/dev/null) || continue
    case $mp in
        /|/proc|/proc/*|/sys|/sys/*|/dev|/dev/*|/tmp|/tmp/*) continue ;;
    esac
    mountpoint -q "$root$mp" 2>/dev/null && continue
    [ -d "$root$mp" ] || continue
    mount --bind "$mp" "$root$mp" && mount -o remount,bind,ro "$root$mp" ||
        fail "cannot show $mp (another file system) inside"
done

command -v ip >/dev/null 2>&1 && ip link set lo up 2>/dev/null

# The environment: the caller's, with the client's settings.
unset DISPLAY
[ -n "$_SIM_DISPLAY" ] && export DISPLAY=$_SIM_DISPLAY
[ -n "$_SIM_DISPLAY" ] || unset XAUTHORITY
unset DAX_LEGACY_MODE
[ "$_SIM_LEGACY" = 1 ] && export DAX_LEGACY_MODE=1
export USBI_SIM=1 DAX_CONFIG_ROOT=$config_root DAX_SHELL_LOG=$log_dir/shell.log \
    SIM_CALL_LOG=$log_dir/calls.log SIM_BUILD_DIR=$_SIM_BUILD
export PATH="$sim_bin:${PATH:-/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin}"
[ -n "${TMPDIR:-}" ] && [ ! -d "$root$TMPDIR" ] && unset TMPDIR
# What the host's session would lend the program (its language, zone, home, desktop and the
# toolkit's folders) is the client's instead.
while IFS= read -r var; do
    case $var in
        LC_* | LANGUAGE | TZ | XDG_* | WAYLAND_DISPLAY | DESKTOP_SESSION | SESSION_MANAGER) unset "$var" ;;
    esac
done < <(compgen -e)
export LANG=C.UTF-8 HOME=/root XDG_RUNTIME_DIR=/run/user/0
umask 022
time_env=()
if [ -n "$_SIM_TIME" ]; then
    # The wall clock stands still; the monotonic one, which timers and timeouts use, runs on.
    # AddressSanitizer would refuse a library loaded before its own.
    time_env=(LD_PRELOAD="$_SIM_FAKETIME${LD_PRELOAD:+ $LD_PRELOAD}" FAKETIME_FMT=%s
        FAKETIME="$_SIM_TIME" FAKETIME_DONT_FAKE_MONOTONIC=1 NO_FAKE_STAT=1
        ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0")
fi
cwd=$_SIM_CWD
if [ ! -d "$root$cwd" ]; then
    printf 'sim/run: the working folder %s does not exist inside; running in /\n' "$cwd" >&2
    cwd=/
fi
keep=$_SIM_KEEP quiet=$_SIM_QUIET report=$_SIM_REPORT
unset _SIM_DIR _SIM_SCRATCH _SIM_BUILD _SIM_LEGACY _SIM_MARKER _SIM_STALE_FONTS _SIM_MODALITY \
    _SIM_HAVE_MODALITY _SIM_GATE _SIM_DISPLAY _SIM_KEEP _SIM_QUIET _SIM_REPORT _SIM_CWD _SIM_NO_JOURNAL \
    _SIM_TIME _SIM_FAKETIME

chroot "$root" /usr/bin/env -C "$cwd" -- "${time_env[@]}" "$@"
status=$?

# Whatever the command sent to the system log is written out; whatever it left running
# (desktop programs started with "&") ends here, the listeners with it.
if [ -n "$logsink" ]; then
    run_logsink --sync "$journal_socket"
    run_logsink --sync "$root/dev/log"
fi
kill -KILL -1 2>/dev/null
for _ in $(seq 100); do
    others=0
    for stat in "$root"/proc/[0-9]*/stat; do
        [ -e "$stat" ] || continue
        read -r pid _ <"$stat" 2>/dev/null || continue
        [ "$pid" = 1 ] || others=1
    done
    [ $others = 0 ] && break
    wait 2>/dev/null
    sleep 0.02
done

# The change report: every path added (A), changed (M) or removed (D) under /, taken from the
# upper layer and compared with the state before. A folder that is new is shown with a "/".
# line LETTER PATH [SUFFIX]: one report line; in the path a backslash is written "\\" and a
# line break "\n".
line() {
    local p=$2
    case $p in
        *\\* | *$'\n'*) p=${p//\\/\\\\}; p=${p//$'\n'/\\n} ;;
    esac
    printf '%s %s%s\n' "$1" "$p" "${3:-}"
}
exists() { [ -e "$1" ] || [ -L "$1" ]; }
is_log() { case $1 in "$log_dir"/shell.log | "$log_dir"/calls.log | "$log_dir"/journal.log | "$log_dir"/syslog.log) ;; *) false ;; esac; }
changes() {
    local rel path entry name
    (cd "$upper" && find . -mindepth 1 -print0) | while IFS= read -r -d '' rel; do
        path=${rel#.}
        is_log "$path" && continue
        if [ -d "$upper$path" ] && [ ! -L "$upper$path" ]; then
            if ! exists "$before$path"; then
                line A "$path" /
            elif [ ! -d "$before$path" ] || [ -L "$before$path" ]; then
                line M "$path" /
            else
                # Removed entries (whiteouts, or a folder made opaque by removal and re-creation).
                (cd "$before$path" && find . -mindepth 1 -maxdepth 1 -print0) |
                    while IFS= read -r -d '' entry; do
                        name=$path/${entry#./}
                        exists "$root$name" && continue
                        if [ -d "$before$name" ] && [ ! -L "$before$name" ]; then
                            line D "$name" /
                        else
                            line D "$name"
                        fi
                    done
            fi
        elif [ -c "$upper$path" ] && [ "$(stat -c %t:%T "$upper$path")" = 0:0 ]; then
            continue # a whiteout: reported with its folder
        elif exists "$before$path"; then
            line M "$path"
        else
            line A "$path"
        fi
    done | LC_ALL=C sort -k2 -u
}
log_section() { # log_section TITLE FILE
    printf '== %s\n' "$1"
    if [ -s "$2" ]; then
        sed 's/^/  /' "$2"
    else
        printf '  (none)\n'
    fi
}
report_text() {
    printf '== changes (A added, M changed, D removed)\n'
    local list
    list=$(changes)
    if [ -n "$list" ]; then printf '%s\n' "$list"; else printf '  (none)\n'; fi
    log_section "shell log ($log_dir/shell.log)" "$root$log_dir/shell.log"
    log_section "tool calls ($log_dir/calls.log)" "$root$log_dir/calls.log"
    # The system log only when something was sent to it.
    [ -s "$root$log_dir/journal.log" ] &&
        log_section "journal ($log_dir/journal.log)" "$root$log_dir/journal.log"
    [ -s "$root$log_dir/syslog.log" ] &&
        log_section "syslog ($log_dir/syslog.log)" "$root$log_dir/syslog.log"
    printf '== exit status %s\n' "$status"
}

if [ "$quiet" != 1 ] || [ -n "$keep" ]; then
    report_text >"$S/report.txt"
fi
if [ "$quiet" != 1 ]; then
    if [ -n "$report" ]; then
        cat "$S/report.txt" >"$report"
    else
        cat "$S/report.txt" >&2
    fi
fi
if [ -n "$keep" ]; then
    rm -rf "$keep/upper" "$keep/logs"
    mkdir -p "$keep/logs" &&
        cp -a "$upper" "$keep/upper" &&
        cp -a "$root$log_dir"/{shell,calls,journal,syslog}.log "$keep/logs/" &&
        cp "$S/report.txt" "$keep/report.txt" ||
        printf 'sim/run: could not keep everything in %s\n' "$keep" >&2
fi
exit "$status"
