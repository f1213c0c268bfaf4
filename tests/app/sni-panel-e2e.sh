#!/usr/bin/env bash
# The tray program with a real StatusNotifierItem host: Xfce's panel with its
# systray plugin, started 5 s after the app (as autostart often has it), under
# Xvfb and openbox on a private session bus. Started at login, the app shows
# no control panel. The item registers with the panel's watcher and its icon
# shows in the panel; a right click opens the panel's menu with "Open Control
# Panel", "Refresh Now" and "Quit"; a left click (the panel calls Activate)
# opens the popover just below the icon; "Quit" from the panel's menu ends the
# app with status 0.
# Usage: private-session.sh sni-panel-e2e.sh BRENVIK
set -euo pipefail

app=$1

# No accessibility bus: the panel would have the session bus start one.
export NO_AT_BRIDGE=1
# shellcheck source=../support/e2e-helpers.sh
source "$(dirname "$0")/../support/e2e-helpers.sh" sni-e2e "${BRENVIK_TEST_SCRATCH:-$(mktemp -d)}/sni"
qt_on_x11
e2e_report_logs=(openbox app panel)
# Each helper runs in a process group of its own, so that ending it also ends
# what it started (the panel runs its plugins in wrapper processes).
spawn() { # spawn NAME COMMAND... ; the PID (and group) lands in $spawned
    local name=$1
    shift
    start "$work/$name.log" setsid "$@"
    spawned=$started
}

# --- an X display with a window manager and the panel's settings store ----------
start_x_display 1024x700

# One panel along the top: a stretching separator, then the systray (which
# hosts StatusNotifierItems too). With its settings in place the panel asks
# nothing on first start.
settings=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
mkdir -p "$settings"
cp "$(dirname "$0")/xfce4-panel.xml" "$settings/"
# Started here rather than by the bus, so it reads the settings above and ends
# with the test.
xfconfd=$(compgen -G '/usr/lib/*/xfce4/xfconf/xfconfd' | head -n1) || fail "no xfconfd installed"
spawn xfconfd "$xfconfd"

# --- the app first, the panel 5 s later -------------------------------------------
bus_has() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.NameHasOwner "string:$1" 2>/dev/null | grep -q 'boolean true'
}
spawn app "$app" --autostart
app_pid=$spawned
wait_until 20 bus_has io.github.brenvik.Brenvik || fail "the app did not start"
sleep 5 # the app is up without a tray; now the session's panel comes
spawn panel xfce4-panel
log "panel started 5 s after the app"

# The item the panel's watcher knows, as "SERVICE/PATH".
registered_item() {
    dbus-send --session --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
        string:RegisteredStatusNotifierItems 2>/dev/null | sed -n 's/^ *string "\(.*\)"$/\1/p'
}
item_registered() { [[ -n $(registered_item) ]]; }
wait_until 30 item_registered || fail "the app's item never registered with the panel's watcher"
item=$(registered_item)
item=${item%%/*}
log "item registered as $item"
first_window Brenvik 420 >/dev/null && fail "the login start (--autostart) showed the control panel"

# The panel: its window along the top. The icon: the box of saturated pixels
# in it (the dot in its state colour on the panel's grey).
panel_height() {
    xwininfo -root -tree |
        sed -n 's/^ *0x[0-9a-f]* "xfce4-panel": ("xfce4-panel" "Xfce4-panel")  1024x\([0-9]*\)+0+0 .*/\1/p' |
        head -n1 | grep .
}
wait_until 20 panel_height >/dev/null || fail "no panel window along the top"
panel_h=$(panel_height)
icon_box() { # prints "X Y W H" of the icon in the panel
    screen_pixels 1024 "$panel_h" 0 0 | awk '{ hi = $3; lo = $3
               if ($4 > hi) hi = $4; if ($5 > hi) hi = $5
               if ($4 < lo) lo = $4; if ($5 < lo) lo = $5 }
             hi - lo > 80 { n++
                            if (n == 1 || $1 < x0) x0 = $1; if ($1 > x1) x1 = $1
                            if (n == 1 || $2 < y0) y0 = $2; if ($2 > y1) y1 = $2 }
             END { if (n < 20) exit 1; print x0, y0, x1 - x0 + 1, y1 - y0 + 1 }'
}
wait_until 20 icon_box >/dev/null || fail "no icon in the panel"
read -r ix iy iw ih < <(icon_box)
log "icon ${iw}x${ih} at +$ix+$iy in the ${panel_h} px panel"

# --- right click: the panel's menu, built from the item's exported menu ----------
menu_labels() {
    local path
    path=$(dbus-send --session --print-reply --dest="$item" /StatusNotifierItem \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierItem string:Menu |
        sed -n 's/.*object path "\(.*\)"/\1/p')
    dbus-send --session --print-reply --dest="$item" "$path" com.canonical.dbusmenu.GetLayout \
        int32:0 int32:-1 array:string:label | grep -A1 'string "label"' |
        sed -n 's/.*variant *string "\(.*\)"/\1/p'
}
labels=$(menu_labels | paste -sd '|')
[[ $labels == "Open Control Panel|Refresh Now|Quit" ]] || fail "the item's menu holds: $labels"
# A menu the panel shows: a window of its, mapped just below the panel.
panel_menu_shown() {
    local id w h y
    while read -r id w h y; do
        ((w > 100 && h > 40 && y >= panel_h - 2 && y <= panel_h + 8)) || continue
        xwininfo -id "$id" | grep -q 'Map State: IsViewable' && return 0
    done < <(xwininfo -root -tree |
        sed -n 's/^ *\(0x[0-9a-f]*\) "[^"]*": ("\(wrapper-2.0\|xfce4-panel\)" .*  \([0-9]*\)x\([0-9]*\)+-*[0-9]*+-*[0-9]*  +[-0-9]*+\([-0-9]*\)$/\1 \3 \4 \5/p')
    return 1
}
click_icon() { xdotool mousemove $((ix + iw / 2)) $((iy + ih / 2)) click "$1"; }
open_menu() { # a click that lands while the panel is still busy can get lost: click again
    local attempt
    for attempt in 1 2 3; do
        click_icon 3
        wait_until 5 panel_menu_shown && return 0
    done
    return 1
}
open_menu || fail "a right click on the icon opened no menu"
import -window root "$work/menu.png"
log "a right click opened the panel's menu: $labels"
xdotool key Escape
wait_until 10 eval '! panel_menu_shown' || fail "the menu did not close"

# --- left click: Activate, the popover just below the icon ------------------------
popover_geometry() { window_geometry "$(app_windows "Brenvik Popover" | head -n1)"; }
popover_shown() { popover_geometry >/dev/null; }
popover_closed() { ! popover_shown; }
click_icon 1
wait_until 20 popover_shown || fail "a left click on the icon opened no popover"
read -r pw ph px py < <(popover_geometry)
import -window root "$work/popover.png"
((py >= panel_h && py <= panel_h + 12)) ||
    fail "popover at y=$py is not just below the ${panel_h} px panel"
((px <= ix + iw && px + pw >= ix && px + pw <= 1024)) ||
    fail "popover x $px..$((px + pw)) is not by the icon at x $ix..$((ix + iw))"
log "a left click opened the popover ${pw}x${ph} at +$px+$py, below the icon at +$ix+$iy"
xdotool key Escape
wait_until 10 popover_closed || fail "Escape did not close the popover"

# --- "Quit" from the panel's menu -------------------------------------------------
open_menu || fail "a right click on the icon opened no menu"
xdotool key Up Return # the last item
wait_until 20 process_ended "$app_pid" || fail "\"Quit\" from the panel's menu did not end the app"
status=0
wait "$app_pid" || status=$?
((status == 0)) || fail "\"Quit\" ended the app with status $status"
log "\"Quit\" from the panel's menu ended the app with status 0"
