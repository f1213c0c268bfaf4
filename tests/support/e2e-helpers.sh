# Sourced by the end-to-end scripts: their scratch folder, logging and failure
# report, bounded waits, background helpers that end with the script, and an
# X display with a window manager.
# Usage: source e2e-helpers.sh NAME WORK_DIR
#   NAME prefixes every line; WORK_DIR holds the helpers' logs. A script may
#   define e2e_cleanup, run after the helpers have ended, and set
#   e2e_report_logs to the logs (names without .log) that a failure shows.

e2e_name=$1
work=$2
mkdir -p "$work"
pids=()
e2e_report_logs=(app)

# Ends every helper: a process group where it leads one (setsid), so that
# what it started ends too; a stopped one takes its TERM only when continued.
e2e_finish() {
    local pid
    for pid in "${pids[@]}"; do
        kill -TERM -- "-$pid" 2>/dev/null || kill "$pid" 2>/dev/null || true
        kill -CONT "$pid" 2>/dev/null || true
    done
    for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null || true; done
    if declare -F e2e_cleanup >/dev/null; then e2e_cleanup; fi
}
trap e2e_finish EXIT

log() { echo "$e2e_name: $*"; }
fail() {
    echo "$e2e_name FAILED: $*" >&2
    [[ -n ${DISPLAY:-} ]] && import -window root "$work/failure.png" 2>/dev/null &&
        echo "screen: $work/failure.png" >&2
    local name
    for name in "${e2e_report_logs[@]}"; do
        [[ -f $work/$name.log ]] && sed "s/^/$name: /" "$work/$name.log" | tail -n 60 >&2
    done
    exit 1
}

now_ms() { date +%s%3N; }
# Polls a command until it succeeds, up to TIMEOUT seconds.
wait_until() {
    local timeout=$1
    shift
    local end=$(($(now_ms) + timeout * 1000))
    until "$@"; do
        (($(now_ms) < end)) || return 1
        sleep 0.2
    done
}
start() { # start LOGFILE COMMAND... ; the PID lands in $started
    local logfile=$1
    shift
    "$@" >"$logfile" 2>&1 &
    started=$!
    pids+=("$started")
}

# Xvfb at WIDTHxHEIGHT and openbox on it; exports DISPLAY.
start_x_display() {
    exec 3>"$work/display"
    start "$work/xvfb.log" Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp
    exec 3>&-
    wait_until 20 test -s "$work/display" || fail "Xvfb did not start"
    export DISPLAY=:$(head -n1 "$work/display")
    start "$work/openbox.log" openbox --sm-disable
    wait_until 20 sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' ||
        fail "openbox did not start"
}
