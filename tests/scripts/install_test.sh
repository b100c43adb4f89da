#!/usr/bin/env bash
# What an installed tree holds, and that the programs in it run from wherever it was put.
# usage: install_test.sh CMAKE BUILD_DIR CHECK_MANUAL
set -euo pipefail
cmake=$1
build=$2
check_manual=$3

fail() { echo "FAIL: $*" >&2; exit 1; }

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
"$cmake" --install "$build" --prefix "$root" >"$root/log" 2>&1 || fail "$(cat "$root/log")"

for file in bin/pulsebar bin/pulsebarctl libexec/pulsebar/pulsebar-{top,smc} \
    share/applications/org.pulsebar.Pulsebar.desktop share/metainfo/org.pulsebar.Pulsebar.metainfo.xml \
    share/dbus-1/services/org.pulsebar.Pulsebar.service \
    share/icons/hicolor/{16x16,22x22,24x24,32x32,48x48,64x64,128x128,256x256}/apps/org.pulsebar.Pulsebar.png \
    share/icons/hicolor/scalable/apps/org.pulsebar.Pulsebar.svg \
    share/icons/hicolor/symbolic/apps/org.pulsebar.Pulsebar-symbolic.svg \
    share/man/man1/{pulsebar,pulsebarctl,pulsebar-top,pulsebar-smc}.1 \
    share/pulsebar/{Temperature,Fan}.plist share/pulsebar/manual/index.html share/doc/pulsebar/README.md; do
    [ -s "$root/$file" ] || fail "not installed: $file"
done

for size in 16 22 24 32 48 64 128 256; do
    # A PNG names its width and height in bytes 16 to 23.
    read -r width height < <(od -An -tu4 --endian=big -j16 -N8 \
        "$root/share/icons/hicolor/${size}x${size}/apps/org.pulsebar.Pulsebar.png")
    [ "$width $height" = "$size $size" ] || fail "the icon for $size has $width x $height pixels"
done

"$check_manual" "$root/share/pulsebar/manual" || fail "the installed manual is not whole"

"$root/bin/pulsebar" --version | grep -q '^pulsebar [0-9]' || fail "pulsebar --version"
"$root/libexec/pulsebar/pulsebar-top" -l 1 -u -n 3 -s 1 -R -stats pid,command,cpu | grep -q '%CPU' ||
    fail "the installed sampler prints no report"
"$root/libexec/pulsebar/pulsebar-smc" -v | grep -q '^pulsebar-smc [0-9]' || fail "pulsebar-smc -v"
grep -q '^Exec=.*/bin/pulsebar' "$root/share/dbus-1/services/org.pulsebar.Pulsebar.service" ||
    fail "the session bus would not find the program"
echo "the installed tree is whole"
