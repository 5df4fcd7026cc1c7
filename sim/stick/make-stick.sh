#!/usr/bin/env bash
# Regenerates the sample stick in this folder: one small valid file of every package type,
# with names that exercise blanks and upper-case extensions. Kept for the record; the files
# are committed, so the tests never depend on these tools.
# Needs: imagemagick (the real /usr/bin/convert), openssl, dpkg-deb, tar.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"
convert=/usr/bin/convert
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Pictures without time stamps, so that a rerun gives the same bytes where the format allows.
picture() { "$convert" "$@"; }
# shellcheck disable=SC2054 # one argument: the chunks' list
strip=(-strip -define png:exclude-chunks=date,time)
picture -size 96x64 gradient:'#4a90d9'-'#f4e4bc' -quality 85 "${strip[@]}" 'beach.jpg'
picture -size 120x80 gradient:'#2e7d32'-'#a5d6a7' -swirl 90 -quality 85 "${strip[@]}" 'Lake View.JPEG'
picture -size 64x64 xc:none -fill '#1565c0' -draw 'circle 32,32 32,4' \
    -fill white -draw 'rectangle 22,22 42,42' "${strip[@]}" 'Company Logo.PNG'
picture -size 48x48 pattern:checkerboard -colors 4 "${strip[@]}" 'banner.gif'
picture -size 32x32 gradient:'#c62828'-'#ffcdd2' -type TrueColor "${strip[@]}" BMP3:'tile.bmp'

# Certificates: a self-signed root (PEM, name with a blank), a second one as .pem and as DER.
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 3650 \
    -subj '/O=Example Fleet/CN=Example Fleet Root CA' -keyout "$work/root.key" \
    -out 'root ca.crt' 2>/dev/null
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 3650 \
    -subj '/O=Example Fleet/CN=proxy.example.com' -keyout "$work/proxy.key" \
    -out 'proxy.pem' 2>/dev/null
openssl x509 -in 'proxy.pem' -outform DER -out 'Proxy.DER'

cat >'Office Printer.ppd' <<'EOF'
*PPD-Adobe: "4.3"
*% Sample printer description for the simulated client.
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "OFFICE.PPD"
*Manufacturer: "Example"
*Product: "(Office Laser 2000)"
*ModelName: "Example Office Laser 2000"
*ShortNickName: "Office Laser 2000"
*NickName: "Example Office Laser 2000, 1.0"
*PSVersion: "(3010.000) 0"
*LanguageLevel: "3"
*ColorDevice: False
*DefaultColorSpace: Gray
*FileSystem: False
*Throughput: "20"
*LandscapeOrientation: Plus90
*TTRasterizer: Type42
*OpenUI *PageSize/Media Size: PickOne
*OrderDependency: 10 AnySetup *PageSize
*DefaultPageSize: A4
*PageSize A4/A4: "<</PageSize[595 842]/ImagingBBox null>>setpagedevice"
*PageSize Letter/US Letter: "<</PageSize[612 792]/ImagingBBox null>>setpagedevice"
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*OrderDependency: 10 AnySetup *PageRegion
*DefaultPageRegion: A4
*PageRegion A4/A4: "<</PageSize[595 842]/ImagingBBox null>>setpagedevice"
*PageRegion Letter/US Letter: "<</PageSize[612 792]/ImagingBBox null>>setpagedevice"
*CloseUI: *PageRegion
*DefaultImageableArea: A4
*ImageableArea A4/A4: "18 18 577 824"
*ImageableArea Letter/US Letter: "18 18 594 774"
*DefaultPaperDimension: A4
*PaperDimension A4/A4: "595 842"
*PaperDimension Letter/US Letter: "612 792"
*DefaultResolution: 600dpi
*DefaultFont: Courier
*Font Courier: Standard "(002.004S)" Standard ROM
*Font Helvetica: Standard "(001.006S)" Standard ROM
*Font Times-Roman: Standard "(001.007S)" Standard ROM
EOF

{
    cat <<'EOF'
# Branch office VPN
client
dev tun
proto udp
remote vpn.example.com 1194
resolv-retry infinite
nobind
persist-key
persist-tun
remote-cert-tls server
auth-user-pass
cipher AES-256-GCM
verb 3
<ca>
EOF
    cat 'root ca.crt'
    printf '</ca>\n'
} >'Branch Office.ovpn'

printf '%s\r\n' 'screen mode id:i:2' 'desktopwidth:i:1920' 'desktopheight:i:1080' \
    'session bpp:i:24' 'full address:s:ts.example.com' 'username:s:' 'domain:s:EXAMPLE' \
    'audiomode:i:0' 'redirectprinters:i:1' 'autoreconnection enabled:i:1' \
    'authentication level:i:2' 'prompt for credentials:i:1' >'Terminal Server.rdp'

cat >'disclaimer.txt' <<'EOF'
This terminal is for authorised use by employees of Example Fleet only.
Activity on this terminal may be monitored and recorded. By logging in you
agree to the acceptable use policy.
EOF
cat >'Notice.HTML' <<'EOF'
<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>Notice</title></head>
<body><p><b>Authorised use only.</b> Activity on this terminal may be monitored and
recorded. By logging in you agree to the acceptable use policy.</p></body></html>
EOF

# A tiny firmware archive and a placeholder remote-support client package.
mkdir -p "$work/firmware"
printf 'version=2.1.0\nmodel=sample\n' >"$work/firmware/VERSION"
printf '#!/bin/sh\necho "sample firmware update: nothing to do"\n' >"$work/firmware/update.sh"
chmod 755 "$work/firmware/update.sh"
tar --sort=name --owner=0 --group=0 --numeric-owner --mtime=2024-01-01 \
    -C "$work" -cf 'firmware-2.1.0.tar' firmware

mkdir -p "$work/deb/DEBIAN"
cat >"$work/deb/DEBIAN/control" <<'EOF'
Package: remote-support-client-sample
Version: 0.0.1
Architecture: all
Maintainer: USB Installer developers <noreply@example.com>
Description: placeholder remote-support client package for the sample stick
 Installs nothing; it only stands in for the real client package.
EOF
dpkg-deb --root-owner-group -Zxz --build "$work/deb" 'ScreenConnect.ClientSetup.deb' >/dev/null

du -sh .
