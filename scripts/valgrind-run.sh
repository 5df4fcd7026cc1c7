#!/usr/bin/env bash
# One whole-program run under valgrind's memcheck, inside the simulated client: the program
# opens on a stick holding a disclaimer, installs it through the window and is closed with
# its Close button. Fails on any memory error, and on a definite leak whose stack passes
# through the program's own code.
#   scripts/valgrind-run.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${USBI_SIM:-}" != 1 ]; then
    build=$(realpath "${1:-build}")
    exec sim/run --quiet --build "$build" -- "$PWD/scripts/valgrind-run.sh" "$build"
fi

build=$1
source scripts/window-points.sh
work=$(mktemp -d /tmp/valgrind.XXXXXX)
mkdir "$work/stick"
mkdir -m 0700 "$work/runtime"
printf 'Authorised use only.\n' >"$work/stick/notice.txt"

source scripts/xvfb.sh
start_xvfb || { echo "valgrind run: the virtual X server did not start"; exit 1; }
export XDG_RUNTIME_DIR=$work/runtime
# No code generated at run time, which memcheck cannot follow: the toolkit's regular
# expressions run as well without their JIT.
export QT_ENABLE_REGEXP_JIT=0

valgrind --tool=memcheck --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=none --error-exitcode=99 --num-callers=40 \
    --suppressions="$PWD/scripts/valgrind.supp" \
    --log-file="$work/memcheck.log" "$build/usb-installer" "$work/stick" &
program=$!

window=$(timeout 300 xdotool search --sync --onlyvisible --name '^USB Installer$' | head -n 1)
# The only type is "Disclaimer", on the single-selection page: press its Install button.
xdotool mousemove --window "$window" "${install[@]}" click 1
for _ in $(seq 600); do grep -qx freeze "$DAX_SHELL_LOG" 2>/dev/null && break; sleep 0.1; done
timeout 300 xdotool search --sync --onlyvisible --name '^USB Installer$' >/dev/null
sleep 1
window=$(xdotool search --onlyvisible --name '^USB Installer$' | head -n 1)
xdotool mousemove --window "$window" "${close_button[@]}" click 1

status=0
wait "$program" || status=$?
cat "$work/memcheck.log"
grep -qx freeze "$DAX_SHELL_LOG" || { echo "valgrind run: the disclaimer was not installed"; exit 1; }
[ "$status" -eq 0 ] || { echo "valgrind run: memcheck found errors (exit status $status)"; exit 1; }

# Definite leaks count when their stack passes through the program's own code.
own=$(awk '/definitely lost in loss record/ {block=1; own=0; alloc=0; next}
           block && / (MgrDlg|InstallerDlg|RcInstaller|RcList|PackageType|installers::|Dax[A-Z][A-Za-z]*::|SecConfig|windowsetup::|dispatch)/ {own=1}
           block && !alloc && /(at|by) 0x/ {if ($0 !~ /operator new|malloc|calloc|realloc/) {alloc=1; if ($0 ~ / main /) own=1}}
           block && /^==[0-9]+== $/ {if (own) n++; block=0}
           END {print n+0}' "$work/memcheck.log")
[ "$own" -eq 0 ] || { echo "valgrind run: $own definite leak(s) from the program's own code"; exit 1; }
echo "valgrind run: no memory errors, no definite leak from the program's own code"
