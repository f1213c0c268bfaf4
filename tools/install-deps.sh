#!/usr/bin/env bash
# Installs the Debian/Ubuntu packages that building, testing and running Brenvik
# need. Quick and silent when everything is present already.
set -euo pipefail

packages=(
  # toolchain
  g++ make cmake ninja-build pkg-config
  # Qt 6 and the platform plugins (xcb for desktops, offscreen for headless tests)
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev libxcb1-dev
  # translations: lupdate/lrelease, their CMake functions, and Qt's own texts
  qt6-l10n-tools qt6-tools-dev qt6-translations-l10n
  # going to a session's window: EWMH requests on X11
  libxcb-ewmh-dev
  # tests and benchmarks
  libgtest-dev libbenchmark-dev
  # the process table tool the ps snapshot source runs
  procps
  # a font, so offscreen rendering has glyphs to draw
  fonts-dejavu-core
  # checking the installed desktop entry and AppStream metadata
  desktop-file-utils appstream
  # end-to-end: display server, tray host, window manager, input and pixels, private bus
  xvfb xauth trayer openbox xdotool x11-utils imagemagick dbus-daemon dbus-bin dunst
  # end-to-end: the terminal a session runs in, to go to
  xterm
  # end-to-end with a real StatusNotifierItem host: Xfce's panel and its settings daemon
  xfce4-panel xfconf
  # end-to-end on Wayland: weston's headless compositor and Qt's Wayland plugin
  weston qt6-wayland
  # end-to-end with the real Codex CLI: its TUI runs in tmux
  tmux
)
# The real Codex CLI comes from npm. Debian's npm brings Debian's Node.js (18 on Debian
# 12, too old for Codex: tools/install-codex.sh then adds a pinned one from npm). A
# Node.js from elsewhere (nodesource) bundles npm, and Debian's npm package would
# conflict with it: install it only when missing.
command -v npm >/dev/null || packages+=(npm)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing missing packages: ${missing[*]}"
sudo=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "error: need root or sudo to install: ${missing[*]}" >&2; exit 1; }
  sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
# A fresh machine's package lists may be stale or empty.
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
