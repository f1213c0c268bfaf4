#!/usr/bin/env bash
# The tray app for MINUTES minutes (30 by default) under Xvfb, on a private session bus
# with a StatusNotifierItem host, while bench/soak.mjs starts, ends and switches
# stand-in Codex sessions and checks what the app shows.
# Usage: bench/soak.sh BUILD_DIR [MINUTES]
set -euo pipefail
build=$(realpath "${1:-build/release}")
minutes=${2:-30}
here=$(cd "$(dirname "$0")" && pwd)
# The app watches the whole process table: in a PID namespace of its own it sees only
# the stand-ins, not the Codex sessions (or test fakes) of the rest of the machine.
if [[ -z ${SOAK_NAMESPACE:-} ]]; then
  export SOAK_NAMESPACE=1
  unshare -fp --mount-proc true 2>/dev/null && exec unshare -fp --mount-proc "$0" "$build" "$minutes"
  unshare -Urfp --mount-proc true 2>/dev/null && exec unshare -Urfp --mount-proc "$0" "$build" "$minutes"
  echo "soak: no PID namespace to be had; other Codex processes of this machine will count" >&2
fi
if [[ -z ${SOAK_PRIVATE_BUS:-} ]]; then
  SOAK_PRIVATE_BUS=1 exec dbus-run-session -- "$0" "$build" "$minutes" 2> >(grep -v 'fd limit' >&2)
fi
scratch=$(mktemp -d /tmp/soak-env.XXXXXX)
xvfb=
cleanup() { [[ -z $xvfb ]] || kill "$xvfb" 2>/dev/null || true; rm -rf "$scratch"; }
trap cleanup EXIT
mkdir -p "$scratch/config" "$scratch/runtime"
chmod 0700 "$scratch/runtime"
export XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch/runtime QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$scratch/display" >/dev/null 2>&1 &
xvfb=$!
for _ in $(seq 100); do [[ -s $scratch/display ]] && break; sleep 0.1; done
export DISPLAY=:$(head -n1 "$scratch/display")
# The bus starts a notification server (dunst) on the app's first notice: on this display.
dbus-update-activation-environment DISPLAY XDG_RUNTIME_DIR XDG_CONFIG_HOME
node "$here/soak.mjs" "$build/src/app/brenvik" "$build/bench/brenvik-fake-sni-watcher" "$minutes"
