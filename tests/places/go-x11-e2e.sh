#!/usr/bin/env bash
# brenvik-status --go on X11, end to end: Xvfb with openbox and two desktops,
# two xterms each showing a tmux session of a private server, a stand-in
# Codex session in a pane of each; one xterm on the other desktop, the other
# minimised. --go PID switches to the window's desktop, restores it, makes it
# the active window and selects the session's pane; the JSON names each pane
# and terminal.
# Usage: go-x11-e2e.sh BRENVIK_STATUS
set -euo pipefail

status_command=$1

# A PID namespace of its own: stand-in sessions elsewhere must not count.
if [[ -z ${BRENVIK_E2E_PRIVATE_BUS:-} ]]; then
    BRENVIK_E2E_PRIVATE_BUS=1 exec "$(dirname "$0")/../support/private-session.sh" "$0" "$@"
fi
# shellcheck source=../support/e2e-helpers.sh
source "$(dirname "$0")/../support/e2e-helpers.sh"

unset QT_QPA_PLATFORM TMUX WAYLAND_DISPLAY
# Where the path says nothing about this program.
dir=$(mktemp -d /tmp/cdx-go.XXXXXX)
tmux=(tmux -S "$dir/sock" -f /dev/null)
pids=()
cleanup() {
    "${tmux[@]}" kill-server 2>/dev/null || true
    local pid
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    for pid in "${pids[@]}"; do
        wait "$pid" 2>/dev/null || true
    done
    rm -rf "$dir"
}
trap cleanup EXIT
log() { echo "e2e: $*"; }
fail() {
    echo "e2e FAILED: $*" >&2
    exit 1
}

exec 3>"$dir/display"
start "$dir/xvfb.log" Xvfb -displayfd 3 -screen 0 1024x700x24 -nolisten tcp
exec 3>&-
wait_until 20 test -s "$dir/display" || fail "Xvfb did not start"
export DISPLAY=:$(head -n1 "$dir/display")
start "$dir/openbox.log" openbox --sm-disable
wait_until 20 sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' ||
    fail "openbox did not start"
xdotool set_num_desktops 2

# one: window 0 a shell, window 1 a shell and the session (pane 1.1).
# two: window 0 a shell and the session (pane 0.1), window 1 a shell, shown.
printf '#!/bin/sh\nsleep 600\n' >"$dir/codex"
chmod +x "$dir/codex"
mkdir "$dir/website" "$dir/infra"
"${tmux[@]}" new-session -d -s one -x 80 -y 24
"${tmux[@]}" new-window -d -t one:1
"${tmux[@]}" split-window -d -t one:1 -c "$dir/website" "$dir/codex"
"${tmux[@]}" new-session -d -s two -x 80 -y 24
"${tmux[@]}" split-window -d -t two:0 -c "$dir/infra" "$dir/codex"
"${tmux[@]}" new-window -t two:1

for n in 1 2; do
    session=$([[ $n == 1 ]] && echo one || echo two)
    start "$dir/xterm$n.log" xterm -T "xt$n" -e "${tmux[@]}" attach -t "$session"
    wait_until 20 sh -c "xdotool search --name '^xt$n\$' >'$dir/xt$n'" || fail "xterm $n did not map"
done
xt1=$(head -n1 "$dir/xt1")
xt2=$(head -n1 "$dir/xt2")
# Asked again until done: openbox ignores what comes before it manages a window.
wait_until 20 sh -c "xdotool set_desktop_for_window $xt1 1; xprop -id $xt1 _NET_WM_DESKTOP | grep -q '= 1\$'" ||
    fail "xterm 1 not moved to desktop 1"
wait_until 20 sh -c "xdotool windowminimize $xt2; xprop -id $xt2 WM_STATE | grep -q Iconic" ||
    fail "xterm 2 not minimised"
xdotool set_desktop 0
wait_until 10 sh -c '[ "$(xdotool get_desktop)" = 0 ]' || fail "desktop 0 not shown"

# "PROJECT PID terminal window session window.pane socket guess" per stand-in.
places() {
    "$status_command" --json | node -e '
        const report = JSON.parse(require("fs").readFileSync(0, "utf8"));
        for (const g of report.groups) {
            const t = g.place.tmux;
            if (t && g.cwd) console.log(g.cwd.split("/").pop(), g.pid, g.place.terminal,
                g.place.window, t.session, `${t.window}.${t.pane}`, t.socket, g.place.guess);
        }' >"$dir/places"
    sort "$dir/places" | sed -E 's/^([a-z]+) [0-9]+ /\1 PID /' >"$dir/actual"
    [[ $(cat "$dir/actual") == "$expected" ]]
}
# Until the xterms' tmux clients have attached.
expected="infra PID xterm $((xt2)) two 0.1 $dir/sock false
website PID xterm $((xt1)) one 1.1 $dir/sock false"
wait_until 60 places || fail "places: expected
$expected
got
$(cat "$dir/actual")"
log "the JSON names both panes and xterms"

go_to() { # go_to PROJECT XTERM DESKTOP SESSION PANE
    local pid
    pid=$(awk -v p="$1" '$1 == p { print $2 }' "$dir/places")
    "$status_command" --go "$pid" >"$dir/go.out" 2>&1 || fail "--go $pid: $(cat "$dir/go.out")"
    [[ ! -s $dir/go.out ]] || fail "--go $pid said: $(cat "$dir/go.out")"
    wait_until 10 sh -c "[ \"\$(xdotool getactivewindow 2>/dev/null)\" = $2 ]" ||
        fail "$1: active window $(xdotool getactivewindow 2>&1), expected $2"
    [[ $(xdotool get_desktop) == "$3" ]] || fail "$1: on desktop $(xdotool get_desktop)"
    xprop -id "$2" WM_STATE | grep -q Normal || fail "$1: its xterm is not restored"
    local pane
    pane=$("${tmux[@]}" display-message -p -t "$4" '#{window_index}.#{pane_index}')
    [[ $pane == "$5" ]] || fail "$1: active pane $pane, expected $5"
    log "--go to $1: xterm raised on desktop $3, pane $5 active"
}
go_to website "$xt1" 1 one 1.1
go_to infra "$xt2" 0 two 0.1

out=$("$status_command" --go 1 2>&1) && fail "--go 1 succeeded: $out"
[[ $out == "brenvik-status: no Codex session has PID 1" ]] || fail "--go 1 said: $out"
log "passed"
