#!/bin/sh
# Renders the icon PNGs from the SVG sources in src/. The PNGs are committed and compiled into
# the program through ../icons.qrc, so the build itself never needs this script; run it after
# changing a source and commit the result. Needs rsvg-convert (Debian package librsvg2-bin).
set -eu

cd "$(dirname "$0")"
command -v rsvg-convert >/dev/null 2>&1 || {
    echo "render.sh: rsvg-convert not found (install librsvg2-bin)" >&2
    exit 1
}

# render SOURCE-NAME SIZE OUTPUT: OUTPUT at SIZE, and OUTPUT with "@2x" before its extension at
# twice SIZE, which the program draws on screens scaled by two so that the icons stay sharp.
render() {
    mkdir -p "$(dirname "$3")"
    rsvg-convert --width "$2" --height "$2" --format png --output "$3" "src/$1.svg"
    rsvg-convert --width "$(($2 * 2))" --height "$(($2 * 2))" --format png \
        --output "${3%.png}@2x.png" "src/$1.svg"
    echo "$3"
}

# Package type icons: 32x32, drawn on a 2-unit grid so that they also scale down cleanly to
# the 16x16 of the type list.
for key in ppd cert update ScreenConnect wallpaper icon desktop screensaver \
    iwallpaper ilogo iproxcard openvpn rdpfile disclaimer; do
    render "$key" 32 "dax-icons/usbrc/$key.png"
done

render memorystick 48 dax-icons/usbrc/memorystick.png
render hd 32 dax-icons/usbrc/hd.png
render install 32 dax-icons/usbrc/install.png
render cert32 32 dax-icons/cert32.png
