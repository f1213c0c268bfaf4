#!/usr/bin/env bash
# Runs real-codex-e2e.mjs under a Node.js that Codex, codex-acp and acpx accept: the
# machine's where it is new enough, else the pinned one tools/install-codex.sh brings
# (Debian 12's Node.js 18 is too old). Takes the driver's arguments; its --codex-cache
# DIR goes to the installer, whose two lines (the install's folder, the node) the
# driver gets in BRENVIK_CODEX_INSTALL.
set -euo pipefail
# A PID namespace of its own where the machine allows one, so that Codex sessions of
# other runs on the machine reach neither brenvik-status's report nor the tray app's
# notices.
if [[ -z ${BRENVIK_E2E_NAMESPACED:-} ]] && unshare -fp --mount-proc true 2>/dev/null; then
    BRENVIK_E2E_NAMESPACED=1 exec unshare -fp --mount-proc "$0" "$@"
fi
here=$(cd "$(dirname "$0")" && pwd)
cache=$(printf '%s\n' "$@" | sed -n '/^--codex-cache$/{n;p;q}')
installed=$("$here/../../tools/install-codex.sh" ${cache:+"$cache"})
BRENVIK_CODEX_INSTALL=$installed exec "${installed##*$'\n'}" "$here/real-codex-e2e.mjs" "$@"
