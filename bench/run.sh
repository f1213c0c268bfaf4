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
awk -F, '
  /^"BM_/ { gsub(/"/, "", $1); split($1, n, "/"); t[n[1] (n[2] ~ /^[0-9]+$/ ? "/" n[2] : "")] = $3; c[n[1] (n[2] ~ /^[0-9]+$/ ? "/" n[2] : "")] = $4 }
  END {
    printf "\nparse + detect, 1,000 rows:   %.3f ms CPU\n", c["BM_ParseAndDetect/1000"]
    printf "parse + detect, 10,000 rows:  %.3f ms CPU (goal < 2 ms)\n", c["BM_ParseAndDetect/10000"]
    printf "one snapshot, /proc (steady): %.3f ms CPU\n", t["BM_ProcSnapshotSteady"]
    printf "one snapshot, /proc (cold):   %.3f ms CPU\n", t["BM_ProcSnapshotCold"]
    printf "one snapshot, /bin/ps:        %.3f ms CPU incl. the child\n", t["BM_PsSnapshot"]
    if (t["BM_ProcSnapshotSteady"] > 0)
      printf "/proc is %.1fx cheaper than ps steady, %.1fx on first sight (goal >= 5x)\n",
        t["BM_PsSnapshot"] / t["BM_ProcSnapshotSteady"], t["BM_PsSnapshot"] / t["BM_ProcSnapshotCold"]
  }' "$detect_csv"
rm -f "$detect_csv"
# ==== end detection ==========================================================

# ==== monitor ================================================================
# The monitor's steady-state cost on the live machine: brenvik-status --watch
# refreshing every 2 s for 60 s (output discarded).
echo
echo "== Monitor steady state"
"$(dirname "$0")/steady-state.sh" 60 "$build/src/app/brenvik-status" --watch
# ==== end monitor ============================================================
