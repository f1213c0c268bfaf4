#!/usr/bin/env bash
# Runs real-codex-e2e.mjs under a Node.js that Codex, codex-acp and acpx accept: the
# machine's where it is new enough, else the pinned one tools/install-codex.sh brings
# (Debian 12's Node.js 18 is too old). Takes the driver's arguments; its --codex-cache
# DIR goes to the installer too.
set -euo pipefail
# A PID namespace of its own where the machine allows one, so that Codex sessions of
# other runs on the machine reach neither brenvik-status's report nor the tray app's
# notices.
if [[ -z ${BRENVIK_E2E_NAMESPACED:-} ]] && unshare -fp --mount-proc true 2>/dev/null; then
    BRENVIK_E2E_NAMESPACED=1 exec unshare -fp --mount-proc "$0" "$@"
fi
here=$(cd "$(dirname "$0")" && pwd)
args=("$@")
cache=()
for ((i = 0; i + 1 < ${#args[@]}; i++)); do [[ ${args[i]} == --codex-cache ]] && cache=("${args[i + 1]}"); done
installed=$("$here/../../tools/install-codex.sh" "${cache[@]}")
exec "${installed##*$'\n'}" "$here/real-codex-e2e.mjs" "$@"
