#!/usr/bin/env bash
# Installs the Debian/Ubuntu packages that a purpose needs: run (build and run
# Brenvik; what `make run` needs), test, bench, soak or deb (each adds its own
# to run's). Quick and silent when everything is present already.
# Usage: tools/install-deps.sh [--dry-run] [run|test|bench|soak|deb]
#   --dry-run  print the purpose's packages, one per line, and install nothing
set -euo pipefail

dry_run=
[[ ${1:-} == --dry-run ]] && { dry_run=1; shift; }
purpose=${1:-test}

run=(
  # toolchain
  g++ make cmake ninja-build pkg-config
  # Qt 6 and its platform plugins; the translation tools build the .qm files
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev libxcb1-dev
  qt6-l10n-tools qt6-tools-dev qt6-translations-l10n
  # going to a session's window: EWMH requests on X11
  libxcb-ewmh-dev
)
# Xvfb, a window manager, a tray host and a private bus: the tray app on a screen of its own.
screen=(xvfb xauth openbox trayer dbus-daemon dbus-bin)
test=(
  libgtest-dev
  # the process table tool the ps snapshot source runs, compared against /proc
  procps
  # a font, so offscreen rendering has glyphs to draw
  fonts-dejavu-core
  # checking the desktop entry, AppStream metadata, man pages and the package
  desktop-file-utils appstream mandoc lintian dpkg-dev file
  "${screen[@]}"
  # end-to-end: input and pixels, notices, the terminal a session runs in, to go to
  xdotool x11-utils imagemagick dunst xterm
  # end-to-end with a real StatusNotifierItem host: Xfce's panel and its settings daemon
  xfce4-panel xfconf
  # end-to-end on Wayland: weston's headless compositor and Qt's Wayland plugin
  weston qt6-wayland
  # end-to-end with the real Codex CLI: its TUI runs in tmux
  tmux
)
bench=(libgtest-dev libbenchmark-dev procps "${screen[@]}")
soak=(libbenchmark-dev dunst "${screen[@]}")
# what builds a package: the hardening flags and the library dependencies it declares
deb=(dpkg-dev file)

case $purpose in
  run) packages=("${run[@]}") ;;
  test) packages=("${run[@]}" "${test[@]}") ;;
  bench) packages=("${run[@]}" "${bench[@]}") ;;
  soak) packages=("${run[@]}" "${soak[@]}") ;;
  deb) packages=("${run[@]}" "${deb[@]}") ;;
  *) echo "usage: $0 [--dry-run] [run|test|bench|soak|deb]" >&2; exit 2 ;;
esac
# The real Codex CLI and the soak's driver come from npm. Debian's npm brings Debian's
# Node.js (18 on Debian 12, too old for Codex: tools/install-codex.sh then adds a
# pinned one from npm). A Node.js from elsewhere (nodesource) bundles npm, and Debian's
# npm package would conflict with it: install it only when missing.
if [[ $purpose == test || $purpose == soak ]] && ! command -v npm >/dev/null; then
  packages+=(npm)
fi

if [[ -n $dry_run ]]; then
  printf '%s\n' "${packages[@]}"
  exit 0
fi
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
