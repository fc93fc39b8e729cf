#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks that the program lands where a Linux
# desktop looks for it, with a valid .desktop entry and AppStream metainfo.
set -euo pipefail
build=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install "$build" --prefix "$prefix" >/dev/null

id=org.perchftp.PerchFtp
expect=(
  bin/perchftp
  share/applications/$id.desktop
  share/metainfo/$id.metainfo.xml
  share/icons/hicolor/scalable/apps/$id.svg
  share/doc/perchftp/copyright
  share/doc/perchftp/changelog.gz
  share/man/man1/perchftp.1.gz
)
for size in 16 32 64 128 256; do
  expect+=(share/icons/hicolor/${size}x${size}/apps/$id.png)
done
status=0
for file in "${expect[@]}"; do
  if [ ! -s "$prefix/$file" ]; then
    echo "missing after install: $file"
    status=1
  fi
done
for size in 16 32 64 128 256; do
  png="$prefix/share/icons/hicolor/${size}x${size}/apps/$id.png"
  [ -s "$png" ] || continue
  # Width and height sit at bytes 16..23 of a PNG header, big-endian.
  dims=$(od -An -tu1 -j16 -N8 "$png" | tr -s ' ' | sed 's/^ //')
  read -r w1 w2 w3 w4 h1 h2 h3 h4 <<<"$dims"
  width=$(( (w1<<24) + (w2<<16) + (w3<<8) + w4 )); height=$(( (h1<<24) + (h2<<16) + (h3<<8) + h4 ))
  if [ "$width" != "$size" ] || [ "$height" != "$size" ]; then
    echo "icon ${size}x${size} is ${width}x${height}"
    status=1
  fi
done
"$prefix/bin/perchftp" --smoke | grep -qx "Version: 0.1.0" || { echo "installed program fails --smoke"; status=1; }

desktop-file-validate "$prefix/share/applications/$id.desktop" || status=1
appstreamcli validate --no-net "$prefix/share/metainfo/$id.metainfo.xml" || status=1
grep -qx "Icon=$id" "$prefix/share/applications/$id.desktop" || { echo "desktop entry names another icon"; status=1; }
exit $status
