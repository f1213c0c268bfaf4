#!/usr/bin/env bash
# Installs the pinned Codex CLI, the Zed adapter codex-acp and acpx with npm into a
# cache outside the source tree, once; prints the npm prefix on standard output.
# Usage: install-codex.sh [CACHE_DIR]   (default: $XDG_CACHE_HOME, else ~/.cache)
# The prefix is CACHE_DIR/codex-npm-<hash of the pins>. Its path must not name Brenvik:
# Brenvik ignores every command that does, and these commands are the ones it watches.
set -euo pipefail

packages=(@openai/codex@0.169.0 @zed-industries/codex-acp@0.16.0 acpx@0.19.1)
# acpx declares node >=22.13 but runs our scenarios under 20: what it and the
# codex-acp launcher use (toSorted, AbortSignal.any, import.meta.resolve) is all there
# from 20.6 on. Debian 12's Node.js 18 lacks toSorted. The Codex CLI wants >=16.
min_node=20.6.0

die() { echo "install-codex: $*" >&2; exit 1; }

command -v node >/dev/null || die "node not found: the real-Codex test needs Node.js >= $min_node (tools/install-deps.sh installs it)"
command -v npm >/dev/null || die "npm not found: the real-Codex test needs npm beside Node.js >= $min_node"
node -e '
  const [want, have] = [process.argv[1], process.versions.node].map(v => v.split(".").map(Number));
  const cmp = have.map((n, i) => n - want[i]).find(d => d !== 0) ?? 0;
  process.exit(cmp < 0 ? 1 : 0);' "$min_node" ||
  die "Node.js $(node --version) is too old: the real-Codex test needs Node.js >= $min_node"

hash=$(printf '%s\n' "${packages[@]}" | sha256sum | cut -c1-12)
prefix=${1:-${XDG_CACHE_HOME:-$HOME/.cache}}/codex-npm-$hash
stamp=$prefix/.installed

if [[ ! -f $stamp ]]; then
    mkdir -p "$prefix"
    log=$prefix/install.log
    # The stamp is written last, so an interrupted install is redone next time.
    npm install --prefix "$prefix" --no-audit --no-fund --loglevel=error \
        "${packages[@]}" >"$log" 2>&1 ||
        { cat "$log" >&2; die "npm install into $prefix failed"; }
    printf '%s\n' "${packages[@]}" >"$stamp"
fi
echo "$prefix"
