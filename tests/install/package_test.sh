#!/usr/bin/env bash
# Packages the current build as `cpack -G DEB` does, into a temporary folder, and holds the .deb
# to Debian's checker: lintian must find no error and no warning. Its informational tags (I:) are
# printed for the reader and do not fail the test: lintian itself hides them by default. Pedantic
# tags (P:) are not asked for: lintian rates them as opinions it may get wrong.
# Usage: package_test.sh <build folder> <project version> <source folder>
set -euo pipefail
build=$1
version=$2
source=$3
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

command -v lintian >/dev/null || { echo "lintian is missing: run scripts/install-deps"; exit 1; }
if ! cpack -G DEB -B "$out" --config "$build/CPackConfig.cmake" >"$out/cpack.log" 2>&1; then
  cat "$out/cpack.log"
  exit 1
fi
deb=$out/perchftp_${version}_$(dpkg --print-architecture).deb
[ -s "$deb" ] || { echo "cpack made no $deb"; ls "$out"; exit 1; }

status=0
lintian_status=0
report=$(lintian --display-info --tag-display-limit 0 --fail-on error,warning "$deb" 2>&1) || lintian_status=$?
report=$(grep -v '^running with root privileges' <<<"$report" || true)
[ -z "$report" ] || printf '%s\n' "$report"
if [ "$lintian_status" -ne 0 ] || grep -Eq '^[EW]: ' <<<"$report"; then
  echo "lintian reports errors or warnings (status $lintian_status)"
  status=1
fi

newest=$(dpkg-parsechangelog -l "$source/resources/debian/changelog" -S Version)
[ "$newest" = "$version" ] || { echo "the changelog's newest entry is $newest, the project is $version"; status=1; }
dpkg-deb -f "$deb" Recommends | grep -qw qt6-wayland || { echo "the package does not recommend qt6-wayland"; status=1; }

page=$(dpkg-deb --fsys-tarfile "$deb" | tar -xO ./usr/share/man/man1/perchftp.1.gz | gzip -dc)
for needed in '\-\-smoke' PERCHFTP_INSTALL_TRACKING_URL PERCHFTP_INSTALL_SOURCE 'XDG_DATA_HOME/PerchFtp' \
    'perchftp\-sites.db' 'PerchFtp.conf' "PerchFtp $version"; do
  grep -qF -- "$needed" <<<"$page" || { echo "the manual page does not mention $needed"; status=1; }
done
exit $status
