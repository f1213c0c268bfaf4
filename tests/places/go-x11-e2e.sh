#!/usr/bin/env bash
# Going to a session on X11, end to end: Xvfb with openbox and two desktops,
# two xterms each showing a tmux session of a private server, a stand-in
# Codex session in three of their panes; one xterm on the other desktop, the other
# minimised. --go PID switches to the window's desktop, restores it, makes it
# the active window and selects the session's pane; the JSON names each pane
# and terminal. Then one session waits for an approval: --go waiting goes
# there, and so does the tray app (with trayer and dunst) from its notice's
# default action, from a double click on its row and from its tray menu item.
# Usage: private-session.sh go-x11-e2e.sh BRENVIK_STATUS BRENVIK
set -euo pipefail

status_command=$1
app=$2

unset QT_QPA_PLATFORM TMUX WAYLAND_DISPLAY
# Where the path says nothing about this program.
dir=$(mktemp -d /tmp/cdx-go.XXXXXX)
# shellcheck source=../support/e2e-helpers.sh
source "$(dirname "$0")/../support/e2e-helpers.sh" e2e "$dir"
tmux=(tmux -S "$dir/sock" -f /dev/null)
e2e_cleanup() {
    "${tmux[@]}" kill-server 2>/dev/null || true
    rm -rf "$dir"
}

start_x_display 1024x700
xdotool set_num_desktops 2

# one: window 0 a shell and the session docs (pane 0.1), window 1 a shell and
# the session website (pane 1.1), shown.
# two: window 0 a shell and the session infra (pane 0.1), window 1 a shell, shown.
printf '#!/bin/sh\nsleep 600\n' >"$dir/codex"
chmod +x "$dir/codex"
mkdir -p "$dir/website" "$dir/infra" "$dir/docs" "$dir/bin" "$dir/home/.codex/sessions/2026/11/24"
# website: `codex exec` in a turn, holding its session log open as Codex does
# (bash under Codex's name: its -c takes a value as Codex's does).
cp "$(command -v bash)" "$dir/bin/codex"
session_log=$dir/home/.codex/sessions/2026/11/24/rollout-2026-11-24T09-12-00-0196a3f2-5b7c-7e01-9d2a-4c3b2a1f0e9d.jsonl
log_line() { echo "{\"timestamp\":\"$(date -u +%Y-%m-%dT%H:%M:%S.%3NZ)\",$1}" >>"$session_log"; }
log_line '"type":"session_meta","payload":{"id":"0196a3f2-5b7c-7e01-9d2a-4c3b2a1f0e9d","cwd":"'"$dir/website"'","originator":"codex_exec","cli_version":"0.169.0"}'
log_line '"type":"event_msg","payload":{"type":"task_started","turn_id":"1"}'
"${tmux[@]}" new-session -d -s one -x 80 -y 24
"${tmux[@]}" new-window -d -t one:1
"${tmux[@]}" split-window -d -t one:1 -c "$dir/website" \
    "exec 3<'$session_log' '$dir/bin/codex' -c 'read -r _; :' exec"
"${tmux[@]}" split-window -d -t one:0 -c "$dir/docs" "$dir/codex"
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
expected="docs PID xterm $((xt1)) one 0.1 $dir/sock false
infra PID xterm $((xt2)) two 0.1 $dir/sock false
website PID xterm $((xt1)) one 1.1 $dir/sock false"
wait_until 60 places || fail "places: expected
$expected
got
$(cat "$dir/actual")"
log "the JSON names each pane and xterm"

is_active() { [[ $(xdotool getactivewindow 2>/dev/null) == "$1" ]]; }
active_window() { # its id and title
    local id
    id=$(xdotool getactivewindow 2>&1)
    echo "$id \"$(xdotool getwindowname "$id" 2>&1)\""
}
# brenvik-status --go TARGET, which says nothing when it went.
go() {
    "$status_command" --go "$1" >"$dir/go.out" 2>&1 || fail "--go $1: $(cat "$dir/go.out")"
    [[ ! -s $dir/go.out ]] || fail "--go $1 said: $(cat "$dir/go.out")"
}
arrived() { # arrived HOW XTERM DESKTOP SESSION PANE
    wait_until 15 is_active "$2" || fail "$1: active window $(active_window), expected $2"
    [[ $(xdotool get_desktop) == "$3" ]] || fail "$1: on desktop $(xdotool get_desktop)"
    xprop -id "$2" WM_STATE | grep -q Normal || fail "$1: its xterm is not restored"
    local pane
    pane=$("${tmux[@]}" display-message -p -t "$4" '#{window_index}.#{pane_index}')
    [[ $pane == "$5" ]] || fail "$1: active pane $pane, expected $5"
    log "$1: xterm $2 raised on desktop $3, pane $4:$5 active"
}
for target in "website $xt1 1 one 1.1" "infra $xt2 0 two 0.1" "docs $xt1 1 one 0.1"; do
    read -r project xterm desktop session pane <<<"$target"
    go "$(awk -v p="$project" '$1 == p { print $2 }' "$dir/places")"
    arrived "--go to $project" "$xterm" "$desktop" "$session" "$pane"
done

out=$("$status_command" --go 1 2>&1) && fail "--go 1 succeeded: $out"
[[ $out == "brenvik-status: no Codex session has PID 1" ]] || fail "--go 1 said: $out"

# === the tray app ============================================================
qt_on_x11
start "$dir/dunst.log" dunst
start "$dir/trayer.log" trayer --edge top --align right --widthtype request --height 24 \
    --SetDockType true --transparent false --tint 0xdddddd
start "$dir/app.log" "$app"
# Which window was active when, for a failure to show.
start "$dir/focus.log" sh -c 'xprop -spy -root _NET_ACTIVE_WINDOW _NET_CURRENT_DESKTOP |
    while read -r line; do echo "$(date +%T.%N) $line"; done'
e2e_report_logs+=(focus)
# Ours: the control panel (at least 420 wide) and the tray icon (at most 64).
panel_shown() { panel=$(first_window Brenvik 420); }
icon_shown() { icon=$(first_window Brenvik 5 64); }
wait_until 30 panel_shown || fail "no control panel"
wait_until 30 icon_shown || fail "no tray icon"
# The app has seen website's turn: its icon is the yellow dot.
wait_until 30 icon_dot_is "$icon" yellow || fail "the tray icon did not turn yellow for website's turn"
# Codex asks to approve a command: a tool call without output.
log_line '"type":"response_item","payload":{"type":"function_call","name":"exec_command","arguments":"{}","call_id":"call_1"}'
wait_until 30 sh -c '[ "$(dunstctl count displayed)" -ge 1 ]' || fail "no notice that website waits"
log "the tray app announced that website waits"

# Each way there starts from elsewhere: desktop 0, the other xterm active,
# another tmux window shown.
elsewhere() {
    xdotool set_desktop 0
    xdotool windowactivate --sync "$xt2" 2>/dev/null || true
    "${tmux[@]}" select-window -t one:0
    wait_until 10 is_active "$xt2" || fail "xterm 2 did not come forward"
}
at_website() { arrived "$1 went to website" "$xt1" 1 one 1.1; }

elsewhere
go waiting
at_website "--go waiting"

elsewhere
dunstctl action 0
at_website "the notice's default action"

# The waiting row: where its violet status capsule is, in the right half of
# the panel's list (the header's violet marks are above it); a double click
# on its project directory, at the left of the same line.
elsewhere
xdotool windowactivate --sync "$panel"
row_y() {
    local width
    read -r width _ < <(window_geometry "$panel")
    pixels_of "$panel" 123 63 228 | awk -v half=$((width / 2)) '
        $1 > half { n[$2]++ } END { max = 0; for (y in n) if (n[y] > 8 && y + 0 > max) max = y + 0; print max - 6 }'
}
y=$(row_y)
((y > 100)) || fail "no waiting row in the control panel"
read -r _ _ px py < <(window_geometry "$panel")
xdotool mousemove $((px + 30)) $((py + y)) click --repeat 2 --delay 60 1
at_website "a double click on its row"

elsewhere
# A click that lands while the window manager is busy can get lost: again, as a person would.
went_by_menu() {
    choose_from_tray_menu "$icon" first || return 1
    wait_until 10 is_active "$xt1"
}
went_by_menu || { xdotool key Escape; elsewhere; went_by_menu; } || fail "its tray menu item did not go there"
at_website "its tray menu item"
log "passed"
