#!/usr/bin/env bash
# Runs real-codex-e2e.mjs under a Node.js that Codex, codex-acp and acpx accept: the
# machine's where it is new enough, else the pinned one tools/install-codex.sh brings
# (Debian 12's Node.js 18 is too old). Takes the driver's arguments; its --codex-cache
# DIR goes to the installer too.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
args=("$@")
cache=()
for ((i = 0; i + 1 < ${#args[@]}; i++)); do [[ ${args[i]} == --codex-cache ]] && cache=("${args[i + 1]}"); done
installed=$("$here/../../tools/install-codex.sh" "${cache[@]}")
exec "${installed##*$'\n'}" "$here/real-codex-e2e.mjs" "$@"
