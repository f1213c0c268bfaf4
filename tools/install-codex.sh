#!/usr/bin/env bash
# Installs the pinned Codex CLI releases, the Zed adapter codex-acp and acpx with npm into
# a cache outside the source tree, once, and a pinned Node.js beside them where the
# machine's is missing or too old. Prints two lines: the cache folder, then the node the
# test runs with.
# Usage: install-codex.sh [CACHE_DIR]   (default: $XDG_CACHE_HOME, else ~/.cache)
# The folder is CACHE_DIR/codex-npm-<hash of the pins>: the newest release, codex-acp and
# acpx at its top, each older release in codex-<version>/, Node.js in node/. Its path must
# not name Brenvik: Brenvik ignores every command that does, and these are the ones it watches.
set -euo pipefail

packages=(@openai/codex@0.169.0 @zed-industries/codex-acp@0.16.0 acpx@0.19.1)
# Each in a prefix of its own: every release names its command `codex`.
older=(0.130.0 0.80.0)
# acpx declares node >=22.13 but runs our scenarios under 20: what it and the
# codex-acp launcher use (toSorted, AbortSignal.any, import.meta.resolve) is all there
# from 20.6 on. Debian 12's Node.js 18 lacks toSorted. The Codex CLI wants >=16.
min_node=20.6.0
# Where the machine's node is older: Node.js 22 LTS, whose binary npm's node-linux-<arch> ships.
node_pin=22.23.3

die() { echo "install-codex: $*" >&2; exit 1; }

command -v npm >/dev/null || die "npm not found: the real-Codex test needs npm (tools/install-deps.sh installs it)"

hash=$(printf '%s\n' "${packages[@]}" "${older[@]}" "$node_pin" | sha256sum | cut -c1-12)
cache=${1:-${XDG_CACHE_HOME:-$HOME/.cache}}/codex-npm-$hash

# npm_install PREFIX PACKAGE...: once; the stamp is written last, so an interrupted install
# is redone next time.
npm_install() {
    local prefix=$1
    shift
    [[ -f $prefix/.installed ]] && return
    mkdir -p "$prefix"
    npm install --prefix "$prefix" --no-audit --no-fund --loglevel=error "$@" >"$prefix/install.log" 2>&1 ||
        { cat "$prefix/install.log" >&2; die "npm install into $prefix failed"; }
    printf '%s\n' "$@" >"$prefix/.installed"
}

new_enough() {
    "$1" -e '
      const [want, have] = [process.argv[1], process.versions.node].map(v => v.split(".").map(Number));
      const cmp = have.map((n, i) => n - want[i]).find(d => d !== 0) ?? 0;
      process.exit(cmp < 0 ? 1 : 0);' "$min_node" 2>/dev/null
}

node=$(command -v node || true)
if [[ -z $node ]] || ! new_enough "$node"; then
    case $(uname -m) in
        x86_64) arch=x64 ;;
        aarch64 | arm64) arch=arm64 ;;
        *) die "no Node.js >= $min_node here, and npm has no pinned one for $(uname -m)" ;;
    esac
    npm_install "$cache/node" "node-linux-$arch@$node_pin"
    node=$cache/node/node_modules/node-linux-$arch/bin/node
    new_enough "$node" || die "the pinned Node.js $node does not run"
fi
npm_install "$cache" "${packages[@]}"
for v in "${older[@]}"; do npm_install "$cache/codex-$v" "@openai/codex@$v"; done
printf '%s\n%s\n' "$cache" "$node"
