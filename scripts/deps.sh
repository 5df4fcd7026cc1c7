#!/usr/bin/env bash
# Installs the Debian packages the build, the simulated client, the tests and the demo need.
# Only what is missing is installed; needs root (or sudo) when something is.
set -euo pipefail

packages=(
    cmake g++ make ninja-build pkg-config
    qtbase5-dev qtbase5-dev-tools libsodium-dev libsystemd-dev
    util-linux mount psmisc iproute2 procps fontconfig libfaketime
    xvfb xdotool x11-utils x11-apps x11-xserver-utils imagemagick
    dbus at-spi2-core python3-pyatspi gir1.2-atspi-2.0
    clang libclang-rt-14-dev valgrind dpkg-dev file lintian
    libarchive-dev libssl-dev openssl jq python3-jsonschema
    clang-format clang-tidy shellcheck
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
