#!/usr/bin/env bash
# Demo: sets up what is missing, builds, prints what the stick check says of the sample stick
# (sim/stick), then runs the USB Installer on it inside the simulated client, never on this
# machine itself.
#
#   ./demo.sh            with $DISPLAY: opens the window on that display; close it to end.
#                        without: runs on a virtual X server inside the simulated client,
#                        installs a wallpaper with the mouse and keyboard as an administrator
#                        would, then once more with a setwp that fails, saves screenshots in
#                        demo-output/ (the main window back after a verified installation,
#                        the dialog that stays after a failed one, the window on a screen
#                        scaled by two) and prints what changed.
#
# Environment: BUILD_DIR (default build), DEMO_OUTPUT (default demo-output).
set -euo pipefail

# Inside the simulated client: drive the program on its own X server. Standard output carries
# only the screenshots (a tar stream); everything said goes to standard error.
inside() {
    local build=$1 here shots bin window list dialog convert
    here=$(pwd)
    exec 3>&1 1>&2
    export LANG=C.UTF-8 LC_ALL=C.UTF-8
    shots=/dev/shm/demo-shots bin=/dev/shm/demo-bin
    mkdir -p "$shots" "$bin"
    convert=$(command -v convert-im6.q16 || command -v /usr/bin/convert || true)
    [ -n "$convert" ] || { echo "demo: ImageMagick's convert is missing (package imagemagick)"; exit 1; }

    # The wallpaper installer ends with "sync". The demo holds it there until the progress
    # dialog, shown only while an installer runs, has been photographed.
    cat >"$bin/sync" <<EOF
#!/bin/sh
while [ ! -e $bin/release ]; do sleep 0.1; done
exec /bin/sync "\$@"
EOF
    chmod +x "$bin/sync"

    source "$here/scripts/xvfb.sh"
    start_xvfb || { echo "demo: the virtual X server did not start"; exit 1; }
    export XDG_RUNTIME_DIR=/dev/shm/demo-runtime
    install -d -m 0700 "$XDG_RUNTIME_DIR"

    shot() { xwd -silent -id "$1" | "$convert" xwd:- "png:$shots/$2"; echo "demo: screenshot $2"; }
    click() { xdotool mousemove --window "$1" "$2" "$3" click 1; }
    source "$here/scripts/window-points.sh"
    mapped() { xwininfo -id "$1" | grep -q 'Map State: IsViewable'; }

    echo "demo: starting usb-installer sim/stick on $DISPLAY"
    PATH=$bin:$PATH "$build/usb-installer" "$here/sim/stick" &
    local program=$!
    window=$(timeout 60 xdotool search --sync --onlyvisible --name '^USB Installer$')
    sleep 0.5 # let the first paint settle before the screenshot
    shot "$window" main-window.png

    # Pick "Wallpaper" (the last type in the list) and the picture beach.jpg, then Install.
    xdotool windowfocus --sync "$window"
    click "$window" "${type_list[@]}"
    xdotool key End
    click "$window" "${file_list[@]}"
    xdotool type --delay 50 beach
    sleep 0.5
    shot "$window" main-window-wallpaper.png
    echo "demo: installing beach.jpg as the wallpaper"
    click "$window" "${install[@]}"

    for _ in $(seq 300); do
        list=$(xdotool search --onlyvisible --name '^USB Installer$' 2>/dev/null || true)
        dialog=$(grep -vx "$window" <<<"$list" | head -n 1 || true)
        [ -n "$dialog" ] && break
        sleep 0.1
    done
    [ -n "$dialog" ] || { echo "demo: the progress dialog did not show"; exit 1; }
    sleep 0.5
    shot "$dialog" progress-dialog.png
    touch "$bin/release"

    for _ in $(seq 300); do mapped "$window" && break; sleep 0.1; done
    sleep 0.5
    shot "$window" main-window-after.png

    # Once more, with a setwp that fails: the dialog stays, says what failed, and closes on
    # Return.
    printf '#!/bin/sh\nexit 3\n' >"$bin/setwp"
    chmod +x "$bin/setwp"
    echo "demo: installing beach.jpg again, with a setwp that exits 3"
    click "$window" "${install[@]}"
    dialog=
    for _ in $(seq 300); do
        list=$(xdotool search --onlyvisible --name '^USB Installer$' 2>/dev/null || true)
        dialog=$(grep -vx "$window" <<<"$list" | head -n 1 || true)
        [ -n "$dialog" ] && [ "$(xwininfo -id "$dialog" | awk '/Width:/ { print $2 }')" -gt 320 ] && break
        sleep 0.1
    done
    sleep 0.5
    shot "$dialog" failed-dialog.png
    xdotool windowfocus --sync "$dialog" key Return
    for _ in $(seq 300); do mapped "$window" && break; sleep 0.1; done
    sleep 0.5
    click "$window" "${close_button[@]}"
    wait "$program" && echo "demo: usb-installer ended with status 0"

    # The window on a high-resolution screen whose session sets Xft.dpi 192 (a scale factor of
    # 2), on an X server large enough for the doubled window; closed with Escape.
    XVFB_SIZE=1600x1000 start_xvfb || { echo "demo: the second virtual X server did not start"; exit 1; }
    echo "Xft.dpi: 192" | xrdb -merge
    echo "demo: starting usb-installer sim/stick on $DISPLAY, scaled by two"
    PATH=$bin:$PATH "$build/usb-installer" "$here/sim/stick" &
    program=$!
    window=$(timeout 60 xdotool search --sync --onlyvisible --name '^USB Installer$')
    sleep 0.5
    shot "$window" main-window-scale2.png
    xdotool windowfocus --sync "$window" key Escape
    wait "$program" && echo "demo: usb-installer ended with status 0"
    tar -C "$shots" -cf - . >&3
}

# Inside the simulated client, on the caller's display: the program as the client starts it,
# with the per-user runtime folder a desktop session provides.
inside_on_display() {
    export XDG_RUNTIME_DIR=/dev/shm/demo-runtime
    install -d -m 0700 "$XDG_RUNTIME_DIR"
    exec "$1/usb-installer" "$(pwd)/sim/stick"
}

case ${1-} in
    --inside-*)
        # These modes run the program: never anywhere but in the simulated client.
        [ "${USBI_SIM-}" = 1 ] || { echo "demo.sh: $1 runs only inside sim/run" >&2; exit 2; }
        ;;
esac
case ${1-} in
    --inside-simulated-client) inside "$2"; exit ;;
    --inside-on-display) inside_on_display "$2" ;;
esac

cd "$(dirname "$(readlink -f "$0")")"
build=${BUILD_DIR:-build}
scripts/setup.sh "$build"
build=$(readlink -f "$build")

# What the sample stick would do to a client, told by the stick check before anything runs: it
# only reads the stick. Given the path the program gets, so that its plan for the wallpaper
# reads like the shell log at the end.
echo "== usb-stick-check $PWD/sim/stick"
"$build/usb-stick-check" "$PWD/sim/stick"
echo

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

if [ -n "${DISPLAY:-}" ]; then
    echo "Opening the USB Installer on $DISPLAY inside the simulated client; close it to end."
    exec "${as_root[@]}" sim/run --build "$build" --display "$DISPLAY" -- \
        "$PWD/demo.sh" --inside-on-display "$build"
fi

out=${DEMO_OUTPUT:-demo-output}
mkdir -p "$out"
out=$(readlink -f "$out")
rm -f "$out"/*.png "$out/report.txt"
"${as_root[@]}" sim/run --build "$build" --report "$out/report.txt" -- \
    "$PWD/demo.sh" --inside-simulated-client "$build" >"$out/screenshots.tar"
tar -xf "$out/screenshots.tar" -C "$out"
rm -f "$out/screenshots.tar"

echo
echo "Screenshots in $out:"
ls -1 "$out"/*.png
echo
echo "What changed on the simulated client:"
cat "$out/report.txt"
