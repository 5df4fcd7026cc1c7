#!/usr/bin/env bash
# test_package.sh SOURCE_DIR BUILD_DIR: builds the Debian package with cpack, checks it with lintian,
# installs it and starts the installed programs; inside the simulated client only.
set -uo pipefail
source_dir=$1 build=$2
[ "${USBI_SIM:-}" = 1 ] || { echo "test_package.sh: runs inside sim/run only" >&2; exit 2; }
source "$source_dir/tests/support/cases.sh"
work=$(mktemp -d /tmp/package-test.XXXXXX)

# cpack writes its install manifest into the build folder.
check "the build folder is writable inside (keep it on the root file system)" touch "$build/.w"
deb=
build_package() {
    (cd "$work" && cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/cpack") >"$work/log" 2>&1 ||
        { cat "$work/log"; return 1; }
    deb=$(find "$work/cpack" -maxdepth 1 -name 'usb-installer_*.deb')
    [ -n "$deb" ]
}
check "cpack builds usb-installer_*.deb" build_package
[ -n "$deb" ] || finish
contents() {
    dpkg-deb --fsys-tarfile "$deb" | tar -t | grep -v '/$' | sort >"$work/files"
    printf './usr/%s\n' bin/usb-installer bin/usb-stick-check share/doc/usb-installer/changelog.gz \
        share/doc/usb-installer/copyright share/man/man1/usb-{installer,stick-check}.1.gz |
        diff - "$work/files"
}
check "it holds both programs, their man pages, copyright and changelog, nothing else" contents
lintian_clean() {
    command -v lintian >/dev/null || { echo "lintian is not installed (scripts/deps.sh)"; return 1; }
    local out
    out=$(lintian --tag-display-limit 0 "$deb" 2>&1)
    ! grep -E '^[EW]: ' <<<"$out"
}
check "lintian finds no error and no warning" lintian_clean
depends() {
    local d p
    d=$(dpkg-deb --field "$deb" Depends) && echo "Depends: $d"
    for p in libqt5widgets5 libqt5gui5 libqt5core5a libsodium23; do grep -Eq "(^|[ ,|])$p( |,|$)" <<<"$d" || return 1; done
    ! grep -Eq -- '-dev( |,|$)' <<<"$d"
}
check "Depends names Debian's Qt 5 runtime and libsodium, no -dev package" depends
check "dpkg -i installs it" eval 'dpkg -i "$deb" >"$work/log" 2>&1 || { cat "$work/log"; false; }'
check "the installed programs find every library" \
    eval '! ldd /usr/bin/usb-installer /usr/bin/usb-stick-check | grep "not found"'
check "the installed usb-stick-check plans the sample stick's wallpaper, without a display" \
    eval 'env -u DISPLAY usb-stick-check "$source_dir/sim/stick" | grep -cx "      setwp /tmp/config/files/default_wp"'
window_on_stick() {
    local pid shown=1
    source "$source_dir/scripts/xvfb.sh"
    start_xvfb || return 1
    /usr/bin/usb-installer "$source_dir/sim/stick" >/dev/null 2>&1 &
    pid=$!
    timeout 60 xdotool search --sync --onlyvisible --name '^USB Installer$' >/dev/null && shown=0
    kill -0 "$pid" 2>/dev/null || shown=1
    kill "$pid" 2>/dev/null
    return $shown
}
check "on the sample stick the installed program shows its window and keeps running" window_on_stick
check "dpkg -r removes it" eval 'dpkg -r usb-installer >/dev/null 2>&1 && [ ! -e /usr/bin/usb-installer ]'
finish
