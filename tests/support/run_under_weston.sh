#!/usr/bin/env bash
# Runs a test program on a headless Wayland compositor of its own: weston with the pixman
# renderer, a plain green desktop and no panel, in a temporary runtime folder. --debug lets the
# program read the screen with weston-screenshooter; PERCHFTP_WESTON_RUNTIME tells it where
# (tests/support/weston_screen.hpp).
# Usage: run_under_weston.sh <program> [arguments...]
set -euo pipefail
work=$(mktemp -d)
weston=
trap '[ -n "$weston" ] && kill "$weston" 2>/dev/null; wait 2>/dev/null; rm -rf "$work"' EXIT
mkdir -m 700 "$work/runtime"
printf '[core]\nidle-time=0\n[shell]\nbackground-color=0xff00ff00\npanel-position=none\nlocking=false\n' \
  >"$work/weston.ini"
XDG_RUNTIME_DIR="$work/runtime" /usr/bin/weston --backend=headless-backend.so --socket=perchftp-test \
  --config="$work/weston.ini" --use-pixman --debug --width=1920 --height=1200 >"$work/weston.log" 2>&1 &
weston=$!
for _ in $(seq 200); do
  [ -S "$work/runtime/perchftp-test" ] && break
  sleep 0.05
done
[ -S "$work/runtime/perchftp-test" ] || { cat "$work/weston.log" >&2; exit 1; }
export PERCHFTP_WESTON_RUNTIME="$work/runtime" WAYLAND_DISPLAY="$work/runtime/perchftp-test" QT_QPA_PLATFORM=wayland
# Widgets draw into shared memory; left to itself Qt also loads Mesa's EGL driver, which unloads
# at exit with memory LeakSanitizer then blames on a module it can no longer name.
export QT_WAYLAND_CLIENT_BUFFER_INTEGRATION=none
"$@"
