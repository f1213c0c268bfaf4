#!/usr/bin/env bash
# Prints the speed and memory figures of a release build.
set -euo pipefail
build=${1:-build/release}

# ==== detection ==============================================================
# Parse + detect on synthetic ps listings, and the CPU (self + children) that
# one live snapshot costs with the /proc source and with /bin/ps. Idle sleepers
# top the table up to about 500 processes, a busy desktop's count.
echo "== Detection pass"
detect_sleepers=()
detect_cleanup() { [ ${#detect_sleepers[@]} -eq 0 ] || kill "${detect_sleepers[@]}" 2>/dev/null || true; }
trap detect_cleanup EXIT
detect_count=$(find /proc -maxdepth 1 -name '[0-9]*' | wc -l)
while [ "$detect_count" -lt 500 ]; do
  sleep 600 &
  detect_sleepers+=($!)
  detect_count=$((detect_count + 1))
done
detect_csv=$(mktemp)
"$build/bench/detection_bench" --benchmark_out="$detect_csv" --benchmark_out_format=csv
detect_cleanup
detect_sleepers=()
trap - EXIT
awk -F, -v procs="$detect_count" '
  /^"BM_/ { gsub(/"/, "", $1); split($1, n, "/"); t[n[1] (n[2] ~ /^[0-9]+$/ ? "/" n[2] : "")] = $3; c[n[1] (n[2] ~ /^[0-9]+$/ ? "/" n[2] : "")] = $4 }
  END {
    printf "\nparse + detect, 1,000 rows:   %.3f ms CPU\n", c["BM_ParseAndDetect/1000"]
    printf "parse + detect, 10,000 rows:  %.3f ms CPU (goal < 2 ms)\n", c["BM_ParseAndDetect/10000"]
    printf "live snapshots below on this machine with %d processes\n", procs
    printf "one snapshot, /proc (steady): %.3f ms CPU\n", t["BM_ProcSnapshotSteady"]
    printf "one snapshot, /proc (cold):   %.3f ms CPU\n", t["BM_ProcSnapshotCold"]
    printf "one snapshot, /bin/ps:        %.3f ms CPU incl. the child\n", t["BM_PsSnapshot"]
    printf "listing /proc alone:          %.3f ms CPU (the floor: which processes exist)\n", t["BM_ListFloor"]
    printf "listing + every stat:         %.3f ms CPU (what the rotation saves)\n", t["BM_EveryStat"]
    if (t["BM_ProcSnapshotSteady"] > 0)
      printf "/proc is %.1fx cheaper than ps steady, %.1fx on first sight (goal >= 5x)\n",
        t["BM_PsSnapshot"] / t["BM_ProcSnapshotSteady"], t["BM_PsSnapshot"] / t["BM_ProcSnapshotCold"]
  }' "$detect_csv"
rm -f "$detect_csv"
# ==== end detection ==========================================================

# ==== sessionlog =============================================================
# Following Codex's session logs: one refresh of 20 logs of 50 MB, each grown
# by one line, and first reads. The logs live in a temporary folder.
echo
echo "== Session logs"
sessionlog_csv=$(mktemp)
"$build/bench/sessionlog_bench" --benchmark_out="$sessionlog_csv" --benchmark_out_format=csv >/dev/null
awk -F, '
  /^"BM_/ { gsub(/"/, "", $1); split($1, n, "/"); t[n[1]] = $3 }
  END {
    printf "refresh, 20 growing 50 MB logs:  %.1f us (goal < 500 us)\n", t["BM_RefreshGrowingLogs"]
    printf "refresh, 20 quiet logs:          %.1f us\n", t["BM_RefreshQuietLogs"]
    printf "first read of a 50 MB log:       %.1f us\n", t["BM_FirstRead"]
    printf "first read, 16 MB look-back:     %.1f ms\n", t["BM_FirstReadWorstCase"]
  }' "$sessionlog_csv"
rm -f "$sessionlog_csv"
# ==== end sessionlog =========================================================

# ==== monitor ================================================================
# The monitor's steady-state cost on the live machine: brenvik-status --watch
# refreshing every 2 s for 60 s (output discarded).
echo
echo "== Monitor steady state ($(find /proc -maxdepth 1 -name '[0-9]*' | wc -l) processes)"
"$(dirname "$0")/steady-state.sh" 60 "$build/src/cli/brenvik-status" --watch
# ==== end monitor ============================================================

# ==== sessions ===============================================================
# A refresh with 20 stand-in sessions, in a PID namespace of their own: where a
# session runs is looked up once when it appears, so it adds nothing per refresh.
echo
echo "== 20 sessions"
"$(dirname "$0")/sessions.sh" "$build" 20 60
# ==== end sessions ===========================================================


# ==== app ====================================================================
# The tray program at rest: brenvik for 60 s under Xvfb, with trayer as tray
# host and openbox as window manager, on a private session bus and with private
# settings, started into the tray as at login (its control panel never opened).
app_steady_state() {
  local build=$1 steady=$2
  # Not local: the EXIT trap runs after this function has returned.
  app_dir=$(mktemp -d)
  helpers=()
  app_cleanup() { [ ${#helpers[@]} -eq 0 ] || kill "${helpers[@]}" 2>/dev/null || true; rm -rf "$app_dir"; }
  trap app_cleanup EXIT
  mkdir -p "$app_dir/home" "$app_dir/config" "$app_dir/runtime"
  chmod 0700 "$app_dir/runtime"
  export HOME=$app_dir/home XDG_CONFIG_HOME=$app_dir/config XDG_RUNTIME_DIR=$app_dir/runtime QT_QPA_PLATFORM=xcb
  Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$app_dir/display" >/dev/null 2>&1 &
  helpers+=($!)
  for _ in $(seq 100); do [ -s "$app_dir/display" ] && break; sleep 0.1; done
  export DISPLAY=:$(head -n1 "$app_dir/display")
  openbox --sm-disable >/dev/null 2>&1 &
  helpers+=($!)
  trayer --edge top --align right --widthtype request --height 24 --SetDockType true >/dev/null 2>&1 &
  helpers+=($!)
  # Started as at login: into the tray, the control panel never opened.
  WARMUP=8 "$steady" "${APP_SECONDS:-60}" "$build/src/app/brenvik" --autostart
}
echo
echo "== Tray app steady state (control panel closed; goal < 40 MB, < 0.2 % of one core; $(find /proc -maxdepth 1 -name '[0-9]*' | wc -l) processes)"
dbus-run-session -- bash -c "set -euo pipefail; $(declare -f app_steady_state); app_steady_state '$build' '$(dirname "$0")/steady-state.sh'" 2> >(grep -v 'fd limit' >&2)
# ==== end app ================================================================

# ==== scale ==================================================================
# The same two programs at rest beside 200, 1,000 and 5,000 extra idle
# processes of our own, and what one /bin/ps run of the same table costs.
# Set SCALE_SIZES= to skip, or other sizes to change them.
scale_sizes=${SCALE_SIZES-200 1000 5000}
scale_seconds=${SCALE_SECONDS:-30}
scale_sleepers=()
scale_cleanup() { [ ${#scale_sleepers[@]} -eq 0 ] || kill "${scale_sleepers[@]}" 2>/dev/null || true; }
# CPU of one ps run in ms, user + system, the median of five.
ps_ms() {
  local i t
  for i in 1 2 3 4 5; do
    t=$( { TIMEFORMAT='%3U %3S'; time /bin/ps -axww -o pid=,ppid=,state=,%cpu=,time=,command= >/dev/null; } 2>&1 )
    echo "$t" | awk '{ printf "%.3f\n", 1000 * ($1 + $2) }'
  done | sort -n | sed -n 3p
}
figure() { awk -v key="$1" -F': *' 'index($1, key) == 1 { print $2 }'; }
for n in $scale_sizes; do
  trap scale_cleanup EXIT
  for ((i = 0; i < n; i++)); do
    sleep 3600 &
    scale_sleepers+=($!)
  done
  procs=$(find /proc -maxdepth 1 -name '[0-9]*' | wc -l)
  ps_cost=$(ps_ms)
  echo
  echo "== At scale: $n extra idle processes ($procs in all); one /bin/ps run: $ps_cost ms CPU"
  status_out=$(WARMUP=6 "$(dirname "$0")/steady-state.sh" "$scale_seconds" "$build/src/cli/brenvik-status" --watch)
  per_refresh=$(echo "$status_out" | figure "CPU time per refresh" | awk '{ print $1 }')
  echo "brenvik-status --watch: $(echo "$status_out" | figure "CPU use"), $per_refresh ms per refresh, $(echo "$status_out" | figure "resident memory"); ps costs $(awk -v a="$ps_cost" -v b="$per_refresh" 'BEGIN { printf "%.0f", (b > 0 ? a / b : 0) }')x a refresh (goal >= 20x at 1,000)"
  floor=$("$build/bench/detection_bench" --benchmark_filter=BM_ListFloor --benchmark_format=csv 2>/dev/null |
    awk -F, '/^"BM_ListFloor/ { print $3 }')
  echo "the floor (listing /proc): $floor ms; a refresh is $(awk -v a="$per_refresh" -v b="$floor" 'BEGIN { printf "%.1f", (b > 0 ? a / b : 0) }')x it; ps could be at most $(awk -v a="$ps_cost" -v b="$floor" 'BEGIN { printf "%.0f", (b > 0 ? a / b : 0) }')x a refresh"
  if [ -z "${SCALE_SKIP_APP:-}" ]; then
    app_out=$(dbus-run-session -- bash -c "set -euo pipefail; $(declare -f app_steady_state); APP_SECONDS=$scale_seconds app_steady_state '$build' '$(dirname "$0")/steady-state.sh'" 2>/dev/null)
    echo "tray app at rest:       $(echo "$app_out" | figure "CPU use"), $(echo "$app_out" | figure "CPU time per refresh"), $(echo "$app_out" | figure "resident memory")"
  fi
  scale_cleanup
  scale_sleepers=()
  trap - EXIT
  sleep 1
done
# ==== end scale ==============================================================
