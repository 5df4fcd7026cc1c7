#!/usr/bin/env bash
# test_package.sh SOURCE_DIR BUILD_DIR: builds the Debian packages with cpack, checks them with
# lintian, installs them and starts the installed programs; inside the simulated client only.
set -uo pipefail
source_dir=$1 build=$2
[ "${USBI_SIM:-}" = 1 ] || { echo "test_package.sh: runs inside sim/run only" >&2; exit 2; }
source "$source_dir/tests/support/cases.sh"
work=$(mktemp -d /tmp/package-test.XXXXXX)

# cpack writes its install manifest into the build folder.
check "the build folder is writable inside (keep it on the root file system)" touch "$build/.w"
debs=()
build_package() {
    (cd "$work" && cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/cpack") >"$work/log" 2>&1 ||
        { cat "$work/log"; return 1; }
    debs=("$work"/cpack/usb-installer_*.deb "$work"/cpack/usb-stick-check_*.deb)
    ls "${debs[@]}" >/dev/null
}
check "cpack builds usb-installer_*.deb and usb-stick-check_*.deb" build_package
[ ${#debs[@]} -eq 2 ] || finish
# contents DEB PROGRAM: the program, its man page, copyright and changelog, nothing else
contents() {
    dpkg-deb --fsys-tarfile "$1" | tar -t | grep -v '/$' | sort >"$work/files"
    printf './usr/%s\n' "bin/$2" "share/doc/$2/changelog.gz" "share/doc/$2/copyright" \
        "share/man/man1/$2.1.gz" | diff - "$work/files"
}
check "usb-installer holds the program, its man page, copyright and changelog" contents "${debs[0]}" usb-installer
check "usb-stick-check holds the check, its man page, copyright and changelog" contents "${debs[1]}" usb-stick-check
lintian_clean() {
    command -v lintian >/dev/null || { echo "lintian is not installed (scripts/deps.sh)"; return 1; }
    local out
    out=$(lintian --tag-display-limit 0 "${debs[@]}" 2>&1)
    ! grep -E '^[EW]: ' <<<"$out"
}
check "lintian finds no error and no warning in either" lintian_clean
# depends DEB NEEDED... -- REFUSED...: Depends names each needed package, none refused, no -dev
depends() {
    local d p deb=$1
    shift
    d=$(dpkg-deb --field "$deb" Depends) && echo "Depends: $d"
    for p; do
        [ "$p" = -- ] && break
        grep -Eq "(^|[ ,|])$p( |,|$)" <<<"$d" || return 1
        shift
    done
    for p in "${@:2}"; do grep -Eq "(^|[ ,|])$p( |,|$)" <<<"$d" && return 1; done
    ! grep -Eq -- '-dev( |,|$)' <<<"$d"
}
check "the installer depends on Qt 5, libsodium, libsystemd and libcrypto, not on what the check reads with" \
    depends "${debs[0]}" libqt5widgets5 libqt5gui5 libqt5core5a libsodium23 libsystemd0 libssl3 -- libarchive13 libqt5network5
check "the check depends on Qt 5, its network part, libarchive and libcrypto" \
    depends "${debs[1]}" libqt5core5a libqt5gui5 libqt5network5 libarchive13 libssl3 -- libsodium23
check "dpkg -i installs both" eval 'dpkg -i "${debs[@]}" >"$work/log" 2>&1 || { cat "$work/log"; false; }'
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
    return "$shown"
}
check "on the sample stick the installed program shows its window and keeps running" window_on_stick
check "the installed usb-stick-check reads the sample stick's contents" \
    eval 'usb-stick-check "$source_dir/sim/stick" | grep -x "  *is: JPEG picture, 96x64"'
check "dpkg -r removes both" eval 'dpkg -r usb-installer usb-stick-check >/dev/null 2>&1 &&
    [ ! -e /usr/bin/usb-installer ] && [ ! -e /usr/bin/usb-stick-check ]'
finish
