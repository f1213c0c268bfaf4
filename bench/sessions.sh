#!/usr/bin/env bash
# Usage: bench/sessions.sh BUILD_DIR [COUNT] [SECONDS]
#
# What a refresh costs while COUNT (20) stand-in Codex sessions run, each a
# `codex exec` holding its session log open, for brenvik-status --watch and for
# the tray app (offscreen, started into the tray). In a PID namespace of its own
# the programs see only the stand-ins, whatever else runs on the machine.
set -euo pipefail
build=$(realpath "${1:-build/release}")
count=${2:-20}
seconds=${3:-60}
here=$(cd "$(dirname "$0")" && pwd)
if [[ -z ${BENCH_NAMESPACED:-} ]]; then
  export BENCH_NAMESPACED=1
  unshare -fp --mount-proc true 2>/dev/null && exec unshare -fp --mount-proc "$0" "$build" "$count" "$seconds"
  unshare -Urfp --mount-proc true 2>/dev/null && exec unshare -Urfp --mount-proc "$0" "$build" "$count" "$seconds"
  echo "sessions: no PID namespace to be had; the machine's other processes count too" >&2
fi

# Brenvik passes over command lines that name it: a neutral folder.
scratch=$(mktemp -d /tmp/sessions-bench.XXXXXX)
standins=()
cleanup() { [[ ${#standins[@]} -eq 0 ]] || kill "${standins[@]}" 2>/dev/null || true; rm -rf "$scratch"; }
trap cleanup EXIT
mkdir -p "$scratch/bin" "$scratch/home/.codex/sessions/2026/11/24" "$scratch/config" "$scratch/runtime"
chmod 0700 "$scratch/runtime"
cp /bin/bash "$scratch/bin/codex" # bash under Codex's name: its -c takes a value as Codex's does
for ((i = 1; i <= count; i++)); do
  dir=$scratch/home/src/p$i
  log=$(printf '%s/home/.codex/sessions/2026/11/24/rollout-2026-11-24T00-00-00-%08d-aaaa-7000-8000-000000000000.jsonl' "$scratch" "$i")
  mkdir -p "$dir"
  printf '{"timestamp":"2026-11-24T00:00:00.000Z","type":"session_meta","payload":{"id":"p%d","cwd":"%s","originator":"codex_exec","cli_version":"0.169.0"}}\n' "$i" "$dir" >"$log"
  (cd "$dir" && exec "$scratch/bin/codex" -c 'sleep 3600; :' exec 3<"$log" </dev/null >/dev/null 2>&1) &
  standins+=($!)
done
export HOME=$scratch/home XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch/runtime
figure() { awk -v key="$1" -F': *' 'index($1, key) == 1 { print $2 }'; }
out=$(WARMUP=6 "$here/steady-state.sh" "$seconds" "$build/src/cli/brenvik-status" --watch)
echo "brenvik-status --watch: $(echo "$out" | figure "CPU time per refresh") per refresh, $(echo "$out" | figure "CPU use")"
out=$(QT_QPA_PLATFORM=offscreen WARMUP=8 dbus-run-session -- "$here/steady-state.sh" "$seconds" "$build/src/app/brenvik" --autostart 2>/dev/null)
echo "tray app:               $(echo "$out" | figure "CPU time per refresh") per refresh, $(echo "$out" | figure "CPU use")"
