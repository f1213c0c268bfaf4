# Sourced by the end-to-end scripts: their scratch folder, logging and failure
# report, bounded waits, background helpers that end with the script, an X
# display with a window manager, and what its windows show.
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

# Xvfb at WIDTHxHEIGHT and openbox on it; exports DISPLAY. An Xvfb that does
# not answer is replaced.
start_x_display() {
    local attempt display candidate
    for attempt in 1 2 3; do
        # A display number of its own rather than -displayfd's first free one:
        # in a PID namespace, Xvfb takes another namespace's lock for a stale
        # one and steals the display from the test that holds it.
        display=
        for candidate in $(shuf -i 100-899 -n 20); do
            [[ -e /tmp/.X11-unix/X$candidate || -e /tmp/.X$candidate-lock ]] && continue
            display=$candidate
            break
        done
        [[ -n $display ]] || fail "no free X display number"
        # -noreset: when its last client (the probe below) leaves, Xvfb would
        # reset and turn away the window manager that connects meanwhile.
        start "$work/xvfb.log" Xvfb ":$display" -screen 0 "$1x24" -nolisten tcp -noreset
        export DISPLAY=:$display
        # Ours only while the lock names our Xvfb: one started at the same
        # moment elsewhere could take the number too.
        wait_until 10 sh -c "[ \"\$(tr -d ' \n' </tmp/.X$display-lock)\" = $started ] &&
            xprop -root _NET_SUPPORTING_WM_CHECK" >/dev/null 2>&1 && break
        log "Xvfb on $DISPLAY does not answer: $(cat "$work/xvfb.log")"
        kill "$started" 2>/dev/null || true
        ((attempt < 3)) || fail "no Xvfb answered"
    done
    start "$work/openbox.log" openbox --sm-disable
    wait_until 20 sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' ||
        fail "openbox did not start: $(cat "$work/openbox.log")"
}

# Qt programs on the X display. libxkbcommon-x11 hands strndup() names that are
# not NUL-terminated, which strndup allows but ASan's strict string checks report.
qt_on_x11() {
    export QT_QPA_PLATFORM=xcb
    export ASAN_OPTIONS=${ASAN_OPTIONS//strict_string_checks=1/strict_string_checks=0}
}

# "W H X Y" of a viewable window, X and Y absolute; fails for one not shown.
window_geometry() {
    [[ -n $1 ]] || return 1 # xwininfo would wait for a click on a window
    xwininfo -id "$1" 2>/dev/null | awk '/Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { y = $NF }
        /^ *Width:/ { w = $NF } /^ *Height:/ { h = $NF } /Map State:/ { shown = $NF == "IsViewable" }
        END { if (!shown) exit 1; print w, h, x, y }'
}
# The IDs of Brenvik's viewable windows titled TITLE and MIN_W to MAX_W wide.
app_windows() { # app_windows TITLE [MIN_W MAX_W]
    local id w
    for id in $(xwininfo -root -tree | sed -n "s/^ *\(0x[0-9a-f]*\) \"$1\": (\"brenvik\" \"Brenvik\") .*/\1/p"); do
        read -r w _ < <(window_geometry "$id") || continue
        ((w >= ${2:-0} && w <= ${3:-99999})) && echo "$id"
    done
    return 0
}
# The first of them: first_window TITLE [MIN_W MAX_W]
first_window() { app_windows "$@" | head -n1 | grep .; }
# "X Y R G B" of each pixel of a rectangle of the screen (W H X Y), X and Y within it.
screen_pixels() {
    import -window root -crop "${1}x${2}+${3}+${4}" +repage -depth 8 txt:- 2>/dev/null |
        sed -n 's/^\([0-9]*\),\([0-9]*\): *(\([0-9]*\),\([0-9]*\),\([0-9]*\).*/\1 \2 \3 \4 \5/p'
}
window_pixels() { # window_pixels WINDOW
    local geometry
    geometry=$(window_geometry "$1") || return 1
    # shellcheck disable=SC2086 # W H X Y
    screen_pixels $geometry
}
# The pixels of a window within 40 of colour R G B, as "X Y" lines relative to it.
pixels_of() { # pixels_of WINDOW R G B
    window_pixels "$1" | awk -v r="$2" -v g="$3" -v b="$4" '
        function d(p, q) { return p > q ? p - q : q - p }
        d($3, r) < 40 && d($4, g) < 40 && d($5, b) < 40 { print $1, $2 }'
}
# Whether the tray icon WINDOW shows its dot in the icon's own green or yellow.
icon_dot_is() { # icon_dot_is WINDOW green|yellow
    local rgb="245 194 17"
    [[ $2 == green ]] && rgb="46 160 67"
    # shellcheck disable=SC2086 # R G B
    (($(pixels_of "$1" $rgb | wc -l) > 20))
}
# Clicks the first or the last item of a viewable Qt menu: its topmost or
# bottommost dark text. The mouse, because keys sent before the menu has
# grabbed the keyboard go to another window.
click_menu_item() { # click_menu_item WINDOW first|last
    local w h x y row last=0 offset=3
    [[ $2 == last ]] && last=1 offset=-3
    read -r w h x y < <(window_geometry "$1") || return 1
    row=$(window_pixels "$1" | awk -v last=$last '
        $3 + $4 + $5 < 120 { if (n++ == 0 || (last ? $2 > y : $2 < y)) y = $2 } END { if (n) print y }')
    [[ -n $row ]] || return 1
    xdotool mousemove $((x + w / 2)) $((y + row + offset)) click 1
}
# Right-clicks the tray icon ICON and clicks the first or last item of its menu.
choose_from_tray_menu() { # choose_from_tray_menu ICON first|last
    local w h x y menu
    read -r w h x y < <(window_geometry "$1") || return 1
    xdotool mousemove $((x + w / 2)) $((y + h / 2)) click 3
    wait_until 5 eval 'menu=$(first_window "Brenvik Menu")' && click_menu_item "$menu" "$2"
}
# Gone, or a zombie waiting for its parent.
process_ended() { [[ ! -e /proc/$1 ]] || grep -q '^State:[[:space:]]*Z' "/proc/$1/status"; }
