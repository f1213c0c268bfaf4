# Sourced by the end-to-end scripts: bounded waits and background helpers
# whose PIDs land in the caller's `pids` array, which its EXIT trap ends.

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
