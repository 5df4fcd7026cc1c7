#!/usr/bin/env bash
# Builds the Debian package of a build directory, installs it and starts the installed program.
# Runs inside the simulated client only (tests/package/CMakeLists.txt registers it with sim/run):
# it installs a package with dpkg.
# Usage: test_package.sh SOURCE_DIR BUILD_DIR
set -uo pipefail
source_dir=$1 build=$2

if [ "${USBI_SIM:-}" != 1 ]; then
    echo "test_package.sh: runs inside the simulated client only (sim/run)" >&2
    exit 2
fi

# cmake --install and cpack write their install manifest into the build folder.
if ! [ -w "$build" ] || ! touch "$build/.package-test" 2>/dev/null; then
    echo "test_package.sh: the build folder $build is read-only in the simulated client;" \
        "keep it on the root file system" >&2
    echo "0 passed, 1 failed"
    exit 1
fi
rm -f "$build/.package-test"

source "$source_dir/tests/support/cases.sh"

work=$(mktemp -d /tmp/package-test.XXXXXX)

# What `cmake --install` installs, relative to the prefix: the programs, their man pages and
# the package's copyright and changelog, nothing else.
expected_files=$(printf '%s\n' bin/usb-installer bin/usb-stick-check \
    share/doc/usb-installer/changelog.gz share/doc/usb-installer/copyright \
    share/man/man1/usb-installer.1.gz share/man/man1/usb-stick-check.1.gz | sort)
installed_files() {
    cmake --install "$build" --prefix "$work/prefix" >/dev/null &&
        [ "$(cd "$work/prefix" && find . -type f -o -type l | sed 's|^\./||' | sort)" = "$expected_files" ]
}
check "cmake --install installs both programs, their man pages, copyright and changelog" installed_files

deb=
build_package() {
    (cd "$work" && cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/cpack" >"$work/cpack.log" 2>&1) ||
        { cat "$work/cpack.log"; return 1; }
    deb=$(find "$work/cpack" -maxdepth 1 -name 'usb-installer_*.deb' | head -n 1)
    [ -n "$deb" ]
}
check "cpack builds usb-installer_*.deb" build_package
[ -n "$deb" ] || finish

package_contents() {
    [ "$(dpkg-deb --fsys-tarfile "$deb" | tar -t | grep -v '/$' | sed 's|^\./usr/||' | sort)" = "$expected_files" ]
}
check "the package holds what cmake --install installs, under /usr" package_contents
lintian_clean() {
    command -v lintian >/dev/null || { echo "lintian is not installed (scripts/deps.sh)"; return 1; }
    local out
    out=$(lintian --tag-display-limit 0 "$deb" 2>&1 | grep -E '^[EW]: ')
    [ -z "$out" ] || { echo "$out"; return 1; }
}
check "lintian finds no error and no warning" lintian_clean

field() { dpkg-deb --field "$deb" "$1"; }
depends_on_runtime() {
    local depends package
    depends=$(field Depends)
    for package in libqt5widgets5 libqt5gui5 libqt5core5a libsodium23; do
        grep -Eq "(^|[ ,|])$package( |,|$)" <<<"$depends" || { echo "Depends lacks $package: $depends"; return 1; }
    done
    ! grep -Eq -- '-dev( |,|$)' <<<"$depends" || { echo "Depends names a -dev package: $depends"; return 1; }
}
check "Depends names Debian's Qt 5 runtime and libsodium, no -dev package" depends_on_runtime
control_fields() {
    [ "$(field Package)" = usb-installer ] && [ "$(field Section)" = admin ] &&
        [ -n "$(field Maintainer)" ] && [ -n "$(field Description)" ] &&
        [ "$(field Architecture)" = "$(dpkg --print-architecture)" ]
}
check "control fields: package, section, maintainer, description, architecture" control_fields

install_package() { dpkg -i "$deb" >"$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; return 1; }; }
check "dpkg -i installs it" install_package
check "dpkg lists it as installed" \
    bash -c '[ "$(dpkg-query -W -f="\${Status}" usb-installer)" = "install ok installed" ]'
libraries_resolved() {
    local program
    for program in /usr/bin/usb-installer /usr/bin/usb-stick-check; do
        [ -x "$program" ] && ! ldd "$program" | grep -q 'not found' || return 1
    done
}
check "the installed programs find every library" libraries_resolved

# The check needs no display: it offers the sample stick's picture and plans its wallpaper.
stick_check() {
    local out
    out=$(env -u DISPLAY /usr/bin/usb-stick-check "$source_dir/sim/stick") &&
        grep -q '^  beach\.jpg  *Desktop Image, Icon, Imprivata Wallpaper, ScreenSaver, Wallpaper$' <<<"$out" &&
        grep -q '^      setwp /tmp/config/files/default_wp$' <<<"$out"
}
check "the installed usb-stick-check reports the sample stick, exit status 0" stick_check

# The program opens its application object before it looks at the command line, so even the
# usage line needs a display; the offscreen one will do.
usage_line() {
    local out status
    out=$(cd "$work" && QT_QPA_PLATFORM=offscreen /usr/bin/usb-installer 2>/dev/null)
    status=$?
    [ "$out" = "usage : /usr/bin/usb-installer mount_dir" ] && [ "$status" -eq 1 ]
}
check "no argument: usage line, exit status 1" usage_line

empty_stick() {
    local err status
    mkdir "$work/empty"
    err=$(QT_QPA_PLATFORM=offscreen /usr/bin/usb-installer "$work/empty" 2>&1 >/dev/null)
    status=$?
    [ "$status" -eq 0 ] && grep -q "no resources found in" <<<"$err"
}
check "empty stick: \"no resources found in\", exit status 0" empty_stick

# On the sample stick the program opens its main window and stays until it is closed.
window_on_stick() {
    local pid shown=1
    Xvfb :7 -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
    export DISPLAY=:7
    for _ in $(seq 300); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
    /usr/bin/usb-installer "$source_dir/sim/stick" >/dev/null 2>&1 &
    pid=$!
    timeout 60 xdotool search --sync --onlyvisible --name '^USB Installer$' >/dev/null && shown=0
    kill -0 "$pid" 2>/dev/null || shown=1
    kill "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
    return $shown
}
check "sample stick: the main window is shown and the program keeps running" window_on_stick

remove_package() {
    dpkg -r usb-installer >/dev/null 2>&1 && [ ! -e /usr/bin/usb-installer ] && [ ! -e /usr/bin/usb-stick-check ]
}
check "dpkg -r removes it" remove_package

finish
