#!/usr/bin/env bash
# Builds (when needed) and starts the tray program; `make run` builds first.
# Without a graphical session there is nothing to show a tray icon in, so say
# so and point to the command-line companion instead of letting Qt abort.
set -euo pipefail
build=${1:-build/release}
cd "$(dirname "$0")/.."

if [[ ! -x $build/src/app/brenvik || ! -x $build/src/cli/brenvik-status ]]; then
  cmake --preset release -B "$build" >/dev/null
  cmake --build "$build" --target brenvik brenvik-status
fi

if [[ -z ${DISPLAY:-} && -z ${WAYLAND_DISPLAY:-} ]]; then
  cat <<MSG
Brenvik is a tray program and needs a graphical session: neither DISPLAY nor
WAYLAND_DISPLAY is set here. To watch Codex CLI processes from this terminal:

  $build/src/cli/brenvik-status --watch
MSG
  exit 0
fi

exec "$build/src/app/brenvik"
