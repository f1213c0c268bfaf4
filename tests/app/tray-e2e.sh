#!/usr/bin/env bash
# The tray program end to end, under Xvfb on a private session bus:
#  1. trayer as XEmbed tray host, openbox as window manager, "Show in Dock" off:
#     control panel mapped and kept out of the taskbar, icon embedded and green,
#     yellow with a busy Codex CLI, a left click opens the popover next
#     to the icon and a second one closes it, the right-click menu's "Open
#     Control Panel" brings back and activates the closed panel, a second launch
#     restores the minimised panel and exits 0, the menu brings it back from
#     another desktop, "Quit" ends the process with status 0;
#  2. the tray host starts a few seconds after the app: the icon still appears;
#  3. no XEmbed host, a fake StatusNotifierWatcher instead, whose host registers
#     only 5 s after the watcher appears (as on KDE): the item still registers,
#     its ToolTip carries the detail text, and Activate opens the popover fully
#     on screen although the host reports no geometry;
#  4. dunst as notification server: a session that works and goes quiet gives
#     one notice whose default action, for a session in no terminal to go to,
#     opens the control panel; none with the preference off.
# Usage: tray-e2e.sh BRENVIK FAKE_SNI_WATCHER
set -euo pipefail

app=$1
fake_watcher=$2

# One private bus (and PID namespace) for the whole test; they end with the script.
if [[ -z ${BRENVIK_E2E_PRIVATE_BUS:-} ]]; then
    BRENVIK_E2E_PRIVATE_BUS=1 exec "$(dirname "$0")/../support/private-session.sh" "$0" "$@"
fi

# Its command line, before any display: usage, version, a refusal, and one
# line where there is no display to show a tray icon in.
expect_exit() {
    local expected=$1 pattern=$2
    shift 2
    local output status=0
    output=$("$@" 2>&1) || status=$?
    [[ $status -eq $expected && $output =~ $pattern ]] || {
        echo "e2e FAILED: '$*' exited $status (expected $expected): $output" >&2
        exit 1
    }
}
expect_exit 0 '^Usage: brenvik' "$app" --help
expect_exit 0 '^brenvik [0-9]' "$app" --version
expect_exit 2 "unknown option '--frobnicate'" "$app" --frobnicate
expect_exit 1 '^brenvik: no graphical session[^'$'\n'']*$' env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$app"

export QT_QPA_PLATFORM=xcb
# libxkbcommon-x11 hands strndup() names that are not NUL-terminated, which
# strndup allows but ASan's strict string checks report.
export ASAN_OPTIONS=${ASAN_OPTIONS//strict_string_checks=1/strict_string_checks=0}
# shellcheck source=../support/e2e-helpers.sh
source "$(dirname "$0")/../support/e2e-helpers.sh" e2e "${BRENVIK_TEST_SCRATCH:-$(mktemp -d)}/e2e"
# The fake Codex CLI lives where the path says nothing about this program.
codex_dir=$(mktemp -d /tmp/e2e-cli.XXXXXX)
e2e_cleanup() { rm -rf "$codex_dir"; }

# --- display, window manager -------------------------------------------------
screen_w=1024
screen_h=700
start_x_display ${screen_w}x$screen_h
log "display $DISPLAY"

start_trayer() {
    start "$work/trayer.log" trayer --edge top --align right --widthtype request --height 24 \
        --SetDockType true --transparent false --tint 0xdddddd
    trayer_pid=$started
}
stop() { # stop PID: ends a helper and waits for it
    kill "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

# --- looking at windows ----------------------------------------------------------
# Lines "ID|NAME|W|H|X|Y" for every window of ours, X and Y absolute.
our_windows() {
    xwininfo -root -tree |
        sed -n 's/^ *\(0x[0-9a-f]*\) "\([^"]*\)": ("brenvik" "Brenvik")  \([0-9]*\)x\([0-9]*\)[-+][-0-9]*[-+][-0-9]*  +\(-\{0,1\}[0-9]*\)+\(-\{0,1\}[0-9]*\)$/\1|\2|\3|\4|\5|\6/p'
}
viewable() { xwininfo -id "$1" 2>/dev/null | grep -q "Map State: IsViewable"; }
# The first viewable window of ours named NAME, optionally of size WxH.
find_window() {
    local name=$1 size=${2:-} line id n w h
    while IFS='|' read -r id n w h _ _; do
        [[ $n == "$name" ]] || continue
        [[ -z $size || ${w}x${h} == "$size" ]] || continue
        viewable "$id" && {
            echo "$id"
            return 0
        }
    done < <(our_windows)
    return 1
}
geometry_of() { # "W H X Y" of a window
    our_windows | awk -F'|' -v id="$1" '$1 == id { print $3, $4, $5, $6 }'
}
# The control panel: at least 420 × 480, larger where its content needs it.
panel_window() {
    local id n w h
    while IFS='|' read -r id n w h _ _; do
        [[ $n == Brenvik ]] && ((w >= 420 && h >= 480)) && viewable "$id" && {
            echo "$id"
            return 0
        }
    done < <(our_windows)
    return 1
}
# The tray icon: our small window inside the tray host.
icon_window() {
    local id n w h
    while IFS='|' read -r id n w h _ _; do
        [[ $n == Brenvik ]] && ((w <= 64 && h <= 64 && w > 4)) && viewable "$id" && {
            echo "$id"
            return 0
        }
    done < <(our_windows)
    return 1
}
panel_is_mapped() { panel_window >/dev/null; }
icon_is_embedded() { icon_window >/dev/null; }
popover_is_mapped() { find_window "Brenvik Popover" >/dev/null; }
popover_is_closed() { ! popover_is_mapped; }
panel_is_closed() { ! panel_is_mapped; }
menu_is_mapped() { find_window "Brenvik Menu" >/dev/null; }
panel_is_active() {
    local panel
    panel=$(panel_window) || return 1
    xprop -root _NET_ACTIVE_WINDOW | grep -q "$(printf '0x%x' "$panel")"
}

# green, yellow, red or other: the most frequent saturated colour of the icon.
icon_colour() {
    local id w h x y
    id=$(icon_window) || {
        echo none
        return
    }
    read -r w h x y < <(geometry_of "$id")
    import -window root -crop "${w}x${h}+${x}+${y}" "$work/icon.png" 2>/dev/null || {
        echo none
        return
    }
    convert "$work/icon.png" -depth 8 txt:- |
        sed -n 's/^[0-9]*,[0-9]*: *(\([0-9]*\),\([0-9]*\),\([0-9]*\).*/\1 \2 \3/p' |
        awk '
            { r = $1; g = $2; b = $3 }
            g > r + 50 && g > b + 50 { n["green"]++; next }
            r > 180 && g > 140 && b < 90 && r - g < 80 { n["yellow"]++; next }
            r > g + 90 && r > b + 90 { n["red"]++ }
            END {
                best = "other"; max = 5
                for (k in n) if (n[k] > max) { max = n[k]; best = k }
                print best
            }'
}
icon_is() { [[ $(icon_colour) == "$1" ]]; }

click_icon() { # click_icon BUTTON
    local id w h x y
    id=$(icon_window) || fail "no tray icon to click"
    read -r w h x y < <(geometry_of "$id")
    xdotool mousemove $((x + w / 2)) $((y + h / 2)) click "$1"
}

# A click that lands while the window manager is still busy with a window
# just activated can get lost; a person would click again, and so do we.
open_menu() {
    local attempt
    for attempt in 1 2 3; do
        click_icon 3
        wait_until 5 menu_is_mapped && return 0
    done
    return 1
}

start_app() {
    start "$work/app.log" "$app" "$@"
    app_pid=$started
}
# Gone, or a zombie waiting for us.
app_ended() { [[ ! -e /proc/$app_pid ]] || grep -q '^State:[[:space:]]*Z' "/proc/$app_pid/status"; }
# Quits through the right-click menu's last item; the app must end with 0.
quit_through_menu() {
    open_menu || fail "right click opened no menu"
    xdotool key Up Return
    local status=0
    wait_until 20 app_ended || fail "Quit did not end the app"
    wait "$app_pid" || status=$?
    ((status == 0)) || fail "Quit ended the app with status $status"
}

# === run 1: trayer and openbox, "Show in Dock while running" off ==============
mkdir -p "$XDG_CONFIG_HOME/Brenvik"
printf '[General]\nshowDockIcon=false\n' >"$XDG_CONFIG_HOME/Brenvik/Brenvik.conf"
start_trayer
start_app
wait_until 20 panel_is_mapped || fail "control panel not mapped"
log "control panel mapped"
wait_until 20 icon_is_embedded || fail "tray icon not embedded in trayer"
log "tray icon embedded"
wait_until 20 icon_is green || fail "icon is $(icon_colour), not green, with no Codex CLI"
log "icon green"
skip_taskbar() { xprop -id "$(panel_window)" _NET_WM_STATE | grep -q _NET_WM_STATE_SKIP_TASKBAR; }
wait_until 20 skip_taskbar || fail "control panel lacks _NET_WM_STATE_SKIP_TASKBAR"
log "control panel kept out of the taskbar"

bash -c "exec -a $codex_dir/codex yes >/dev/null" &
codex_pid=$!
pids+=("$codex_pid")
began=$(now_ms)
wait_until 20 icon_is yellow || fail "icon did not turn yellow with a busy Codex CLI"
took=$(($(now_ms) - began))
# How soon is the soak's and the benchmarks' to measure: a loaded machine slows the refresh.
log "icon yellow ${took} ms after a busy Codex CLI started"
stop "$codex_pid"

click_icon 1
wait_until 20 popover_is_mapped || fail "left click opened no popover"
read -r pw ph px py < <(geometry_of "$(find_window "Brenvik Popover")")
read -r iw ih ix iy < <(geometry_of "$(icon_window)")
gap=$((py - (iy + ih)))
((gap >= 0 && gap <= 12)) || fail "popover at y=$py is not just below the icon (bottom $((iy + ih)))"
((px <= ix + iw && px + pw >= ix)) || fail "popover x $px..$((px + pw)) misses the icon at $ix"
((px >= 0 && px + pw <= screen_w)) || fail "popover leaves the screen"
log "popover ${pw}x${ph} at +$px+$py next to the icon at +$ix+$iy"
click_icon 1
wait_until 20 popover_is_closed || fail "a second left click did not close the popover"
log "a second left click closed it"

xdotool windowactivate --sync "$(panel_window)" key alt+F4
wait_until 20 panel_is_closed || fail "control panel did not close"
open_menu || fail "right click opened no menu"
log "context menu open"
xdotool key Down Return
wait_until 20 panel_is_mapped || fail "\"Open Control Panel\" did not show the panel"
wait_until 20 panel_is_active || fail "\"Open Control Panel\" did not activate the panel"
log "\"Open Control Panel\" showed and activated the panel"

# Minimised with no taskbar entry: only Brenvik can bring it back.
xdotool windowminimize --sync "$(panel_window)"
wait_until 20 panel_is_closed || fail "control panel did not minimise"
log "control panel minimised"
second=0
timeout 20 "$app" >"$work/second.log" 2>&1 || second=$?
((second == 0)) || fail "second launch ended with status $second"
wait_until 20 panel_is_mapped || fail "second launch did not show the running panel"
wait_until 20 panel_is_active || fail "second launch did not activate the running panel"
app_ended && fail "the running instance ended"
log "second launch restored the minimised panel, activated it, and exited 0"

# Left behind on another desktop: "Open Control Panel" shows it where the user is.
xdotool set_desktop 1
wait_until 20 panel_is_closed || fail "the panel still shows after moving to desktop 2"
open_menu || fail "right click opened no menu on desktop 2"
xdotool key Down Return
wait_until 20 panel_is_mapped || fail "\"Open Control Panel\" did not show the panel from another desktop"
wait_until 20 panel_is_active || fail "\"Open Control Panel\" did not activate the panel from another desktop"
log "from another desktop, \"Open Control Panel\" showed and activated the panel"

quit_through_menu
log "Quit ended the app with status 0"

# === run 2: the tray host comes after the app =================================
stop "$trayer_pid"
rm -f "$XDG_CONFIG_HOME/Brenvik/Brenvik.conf"
start_app
wait_until 20 panel_is_mapped || fail "control panel not mapped (late tray host)"
sleep 3 # the app is up and waiting; now the panel's tray appears
icon_is_embedded && fail "an icon without a tray host"
start_trayer
wait_until 20 icon_is_embedded || fail "no icon after the tray host started late"
wait_until 20 icon_is green || fail "late icon is $(icon_colour), not green"
log "tray host started 3 s after the app: icon embedded and green"
quit_through_menu
stop "$trayer_pid"

# === run 3: a StatusNotifierItem host that reports no geometry ================
start_app
wait_until 20 panel_is_mapped || fail "control panel not mapped (StatusNotifierItem run)"
start "$work/watcher.log" "$fake_watcher" --host-after 5
wait_until 20 grep -q '^registered ' "$work/watcher.log" || fail "the app registered no item"
item=$(sed -n 's/^registered //p' "$work/watcher.log" | head -n1)
log "item registered as $item once the host came, 5 s after the watcher"
tooltip_has_detail() {
    dbus-send --session --print-reply --dest="$item" /StatusNotifierItem \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierItem string:ToolTip |
        grep -q '"No Codex CLI process detected"'
}
wait_until 20 tooltip_has_detail || fail "the item's ToolTip lacks the detail text"
log "item ToolTip carries the detail text"
xdotool mousemove $((screen_w - 1)) $((screen_h - 1))
dbus-send --session --print-reply --dest="$item" /StatusNotifierItem \
    org.kde.StatusNotifierItem.Activate int32:0 int32:0 >/dev/null
wait_until 20 popover_is_mapped || fail "Activate opened no popover"
read -r pw ph px py < <(geometry_of "$(find_window "Brenvik Popover")")
((px >= 0 && py >= 0 && px + pw <= screen_w && py + ph <= screen_h)) ||
    fail "popover ${pw}x${ph}+$px+$py is not fully on the ${screen_w}x${screen_h} screen"
log "Activate opened the popover fully on screen: ${pw}x${ph}+$px+$py"
stop "$app_pid"

# === run 4: desktop notifications, with dunst as the notification server =======
# A fake Codex session in its project folder works for 12 s, then goes quiet
# (stopped, so it uses no CPU): one "finished" notice names the project, and
# its default action, with no terminal to go to, opens the control panel,
# which says why. With the preference off: none.
start "$work/dunst.log" dunst
wait_until 20 dbus-send --session --print-reply --dest=org.freedesktop.Notifications \
    /org/freedesktop/Notifications org.freedesktop.Notifications.GetServerInformation ||
    fail "dunst did not start"
mkdir -p "$codex_dir/alpha"
finished_notices() { dunstctl history | grep -o 'Codex finished · alpha' | wc -l; }
work_then_go_quiet() {
    (cd "$codex_dir/alpha" && exec -a "$codex_dir/codex" yes >/dev/null) &
    local worker=$!
    pids+=("$worker")
    sleep 12
    kill -STOP "$worker"
    quiet_worker=$worker
}
start_app --autostart
work_then_go_quiet
wait_until 30 sh -c '[ "$(dunstctl history | grep -o "Codex finished · alpha" | wc -l)" -ge 1 ] ||
    [ "$(dunstctl count displayed)" -ge 1 ]' || fail "no notification after the session went quiet"
panel_is_mapped && fail "the login start opened the control panel"
dunstctl action 0
wait_until 20 panel_is_mapped || fail "the notification's default action did not open the panel"
log "a session that worked and went quiet gave one notice; its action opened the panel"
sleep 3
dunstctl history-pop >/dev/null 2>&1 || true
(($(finished_notices) + $(dunstctl count displayed) == 1)) ||
    fail "expected exactly one notice, history: $(dunstctl history | head -c 400)"
stop "$app_pid"
kill -KILL "$quiet_worker" 2>/dev/null || true
dunstctl close-all
notices_before=$(finished_notices)

printf '[General]\nnotifySessions=false\n' >"$XDG_CONFIG_HOME/Brenvik/Brenvik.conf"
start_app --autostart
work_then_go_quiet
sleep 14 # the 8 s after its last work, and a refresh
(($(dunstctl count displayed) == 0 && $(finished_notices) == notices_before)) ||
    fail "a notice with notifications off"
log "with notifications off: no notice"
stop "$app_pid"
kill -KILL "$quiet_worker" 2>/dev/null || true
log "all runs passed"
