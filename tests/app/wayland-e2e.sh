#!/usr/bin/env bash
# The tray program on Wayland, under weston's headless compositor on a private
# session bus, with a fake StatusNotifierWatcher whose host registers only 5 s
# after the watcher appears (as on KDE), and "Show in taskbar" stored off: the
# control panel maps and its switch shows the red refusal from the start (the
# stored value untouched); the item still registers once the host comes, its
# ToolTip carries the detail text, its Activate opens the popover as a window
# the compositor places fully on screen, and a second Activate closes it.
# Usage: private-session.sh wayland-e2e.sh BRENVIK FAKE_SNI_WATCHER
set -euo pipefail

app=$1
fake_watcher=$2


# XDG_RUNTIME_DIR is private (0700): weston puts its socket there.
# shellcheck source=../support/e2e-helpers.sh
source "$(dirname "$0")/../support/e2e-helpers.sh" wayland-e2e "${BRENVIK_TEST_SCRATCH:-$(mktemp -d)}/wayland-e2e"
e2e_report_logs=(scene app)

# --- compositor: headless, pixman so that screenshots have pixels; --debug
# opens the scene graph and the screenshooter to clients.
screen_w=1024
screen_h=700
export WAYLAND_DISPLAY=brenvik-e2e
start "$work/weston.log" weston --backend=headless-backend.so --socket="$WAYLAND_DISPLAY" \
    --use-pixman --debug --no-config --idle-time=0 --width=$screen_w --height=$screen_h
weston_pid=$started
wait_until 20 test -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY" || fail "weston did not start"
log "weston on $WAYLAND_DISPLAY"
unset DISPLAY
export QT_QPA_PLATFORM=wayland

# --- looking at the compositor ----------------------------------------------------
# "X1 Y1 X2 Y2" of the top-level window titled NAME, from weston's scene graph.
window_box() {
    timeout 10 weston-debug scene-graph >"$work/scene.log" 2>/dev/null || return 1
    awk -v want="top-level window '$1' of" '
        index($0, want) { found = 1; next }
        found && /position:/ {
            gsub(/[(),>-]/, " "); print $2, $3, $4, $5; exit
        }' "$work/scene.log" | grep .
}
is_mapped() { window_box "$1" >/dev/null; }
is_closed() { ! is_mapped "$1"; }
# Pixels of the refusal's red inside the control panel, from a screenshot.
red_pixels_in_panel() {
    local x1 y1 x2 y2 shot
    read -r x1 y1 x2 y2 < <(window_box Brenvik) || return 1
    rm -f "$work"/wayland-screenshot*.png
    (cd "$work" && timeout 10 weston-screenshooter >/dev/null 2>&1) || return 1
    shot=$(ls "$work"/wayland-screenshot*.png 2>/dev/null | head -n1)
    [[ -n $shot ]] || return 1
    cp "$shot" "$work/screen.png"
    convert "$shot" -crop "$((x2 - x1))x$((y2 - y1))+$x1+$y1" -depth 8 txt:- |
        sed -n 's/^[0-9]*,[0-9]*: *(\([0-9]*\),\([0-9]*\),\([0-9]*\).*/\1 \2 \3/p' |
        awk '$1 > 150 && $2 < 100 && $3 < 100 { n++ } END { print n + 0 }'
}
refusal_shown() { (($(red_pixels_in_panel || echo 0) > 40)); }

# --- the app, with "Show in taskbar while running" stored off -----------------------
conf=$XDG_CONFIG_HOME/Brenvik/Brenvik.conf
mkdir -p "$(dirname "$conf")"
printf '[General]\nshowDockIcon=false\n' >"$conf"
start "$work/watcher.log" "$fake_watcher" --host-after 5
watcher_pid=$started
start "$work/app.log" "$app"
app_pid=$started
wait_until 20 is_mapped Brenvik || fail "control panel not mapped"
log "control panel mapped at $(window_box Brenvik)"
wait_until 20 refusal_shown || fail "no red refusal in the control panel (see $work/screen.png)"
log "the taskbar switch shows the refusal without being touched"
grep -q '^showDockIcon=false$' "$conf" || fail "the stored preference changed: $(cat "$conf")"
log "showDockIcon still stored off"

# --- the popover, from the tray host's Activate ---------------------------------------
wait_until 20 grep -q '^registered ' "$work/watcher.log" || fail "the app registered no item"
item=$(sed -n 's/^registered //p' "$work/watcher.log" | head -n1)
log "item registered as $item once the host came, 5 s after the watcher"
tooltip_has_detail() {
    dbus-send --session --print-reply --dest="$item" /StatusNotifierItem \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierItem string:ToolTip |
        grep -q '"No Codex CLI process detected"'
}
wait_until 20 tooltip_has_detail || fail "the item's ToolTip lacks the detail text"
activate() {
    dbus-send --session --print-reply --dest="$item" /StatusNotifierItem \
        org.kde.StatusNotifierItem.Activate int32:0 int32:0 >/dev/null
}
activate
wait_until 20 is_mapped "Brenvik Popover" || fail "Activate opened no popover"
read -r x1 y1 x2 y2 < <(window_box "Brenvik Popover")
((x2 - x1 >= 200 && y2 - y1 >= 60)) || fail "popover only $((x2 - x1))x$((y2 - y1))"
((x1 >= 0 && y1 >= 0 && x2 <= screen_w && y2 <= screen_h)) ||
    fail "popover $x1,$y1..$x2,$y2 is not fully on the ${screen_w}x${screen_h} screen"
log "Activate opened the popover fully on screen: $x1,$y1..$x2,$y2"
activate
wait_until 20 is_closed "Brenvik Popover" || fail "a second Activate did not close the popover"
log "a second Activate closed it"

# Still running: a crash would have closed the popover too.
kill -0 "$app_pid" 2>/dev/null || fail "the app ended by itself"
kill -0 "$weston_pid" 2>/dev/null || fail "weston ended"
kill -0 "$watcher_pid" 2>/dev/null || fail "the fake watcher ended"
kill "$app_pid"
status=0
wait "$app_pid" 2>/dev/null || status=$?
((status == 143)) || fail "the app ended with status $status on SIGTERM"
log "passed"
