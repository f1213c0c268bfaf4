#!/usr/bin/env bash
# Usage: bench/steady-state.sh SECONDS COMMAND [ARGUMENT...]
#
# Starts COMMAND (its output discarded), lets it settle, then watches it for
# SECONDS seconds through /proc and prints its steady-state cost: CPU time per
# refresh, CPU use in percent of one core, and resident memory (max, final).
# CPU time counts the process and its waited-for children (utime + stime +
# cutime + cstime, in clock ticks). Since a tick (10 ms) is coarse next to a
# cheap refresh, the threads' own nanosecond run times (task schedstat,
# sampled every second) are summed too, plus the children's ticks.
#
# Environment: REFRESH_INTERVAL (seconds between the command's refreshes,
# default 2), WARMUP (seconds skipped after the start, default 3).
set -euo pipefail

if [ $# -lt 2 ] || ! [[ $1 =~ ^[0-9]+$ ]] || [ "$1" -eq 0 ]; then
  echo "usage: $0 SECONDS COMMAND [ARGUMENT...]" >&2
  exit 2
fi
seconds=$1
shift
interval=${REFRESH_INTERVAL:-2}
warmup=${WARMUP:-3}
ticks_per_second=$(getconf CLK_TCK)

"$@" >/dev/null 2>&1 &
pid=$!
stop() { kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null || true; }
trap stop EXIT

# utime + stime + cutime + cstime in ticks. The fields are counted from the
# last ")", since the command name may hold blanks and parentheses.
cpu_ticks() {
  local stat
  stat=$(<"/proc/$pid/stat") || return 1
  stat=${stat##*) }
  # shellcheck disable=SC2086
  set -- $stat
  echo $((${12} + ${13} + ${14} + ${15}))
}

# Adds the growth of every thread's run time (ns) since the previous call to
# run_ns. A thread seen for the first time counts from its start; one that
# ended loses at most its last second.
declare -A last_ns=()
run_ns=0
sample_threads() {
  local task ns rest tid
  for task in /proc/"$pid"/task/*; do
    read -r ns rest <"$task/schedstat" 2>/dev/null || continue
    tid=${task##*/}
    run_ns=$((run_ns + ns - ${last_ns[$tid]:-0}))
    last_ns[$tid]=$ns
  done
}

children_ticks() {
  local stat
  stat=$(<"/proc/$pid/stat") || return 1
  stat=${stat##*) }
  # shellcheck disable=SC2086
  set -- $stat
  echo $((${14} + ${15}))
}

rss_kib() {
  awk '/^VmRSS:/ { print $2; found = 1 } END { if (!found) print 0 }' "/proc/$pid/status"
}

alive() {
  kill -0 "$pid" 2>/dev/null || { echo "error: '$*' ended early" >&2; exit 1; }
}

sleep "$warmup"
alive "$@"
sample_threads
run_ns=0
start_ticks=$(cpu_ticks)
start_children=$(children_ticks)
start_time=$(date +%s.%N)
max_rss=$(rss_kib)
for ((i = 0; i < seconds; i++)); do
  sleep 1
  alive "$@"
  sample_threads
  rss=$(rss_kib)
  [ "$rss" -gt "$max_rss" ] && max_rss=$rss
done
end_ticks=$(cpu_ticks)
end_children=$(children_ticks)
end_time=$(date +%s.%N)
final_rss=$(rss_kib)

awk -v ticks=$((end_ticks - start_ticks)) -v hz="$ticks_per_second" -v ns="$run_ns" \
    -v children=$((end_children - start_children)) \
    -v t0="$start_time" -v t1="$end_time" -v interval="$interval" \
    -v max_rss="$max_rss" -v final_rss="$final_rss" -v command="$*" -v warmup="$warmup" '
  BEGIN {
    elapsed = t1 - t0
    refreshes = elapsed / interval
    coarse = ticks / hz
    cpu = ns / 1e9 + children / hz
    printf "command:              %s\n", command
    printf "measured:             %.1f s after a %d s warm-up, a refresh every %s s\n", elapsed, warmup, interval
    printf "CPU time:             %.4f s (threads in ns + children in ticks); %.2f s in whole ticks\n", cpu, coarse
    printf "CPU time per refresh: %.2f ms\n", 1000 * cpu / refreshes
    printf "CPU use:              %.3f %% of one core\n", 100 * cpu / elapsed
    printf "resident memory:      max %.1f MiB, final %.1f MiB\n", max_rss / 1024, final_rss / 1024
  }'
