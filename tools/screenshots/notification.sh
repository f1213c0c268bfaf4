#!/usr/bin/env bash
# Draws one of Brenvik's notices as dunst shows it: a stand-in Codex session whose log
# says it worked for four minutes and then finished, watched by the tray app, all on a
# private bus and display.
# Usage: notification.sh BRENVIK OUT.png
set -euo pipefail
if [[ -z ${NOTICE_SHOT_PRIVATE_BUS:-} ]]; then
    NOTICE_SHOT_PRIVATE_BUS=1 exec dbus-run-session -- "$0" "$@"
fi
app=$(realpath "$1")
out=$(realpath -m "$2")
icons=$(dirname "$app")/icons/hicolor/48x48/apps

# Brenvik passes over anything whose command line names it: a neutral folder.
work=$(mktemp -d /tmp/notice-shot.XXXXXX)
pids=()
cleanup() {
    kill "${pids[@]}" 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/runtime
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR" "$work/bin"
chmod 0700 "$XDG_RUNTIME_DIR"
# shellcheck source=../../tests/support/e2e-helpers.sh
source "$(dirname "$0")/../../tests/support/e2e-helpers.sh"
await() { # SECONDS COMMAND...: wait_until, or give up with the reason
    wait_until "$@" || { echo "notification.sh: gave up waiting for: ${*:2}" >&2; exit 1; }
}

exec 3>"$work/display"
Xvfb -displayfd 3 -screen 0 640x200x24 -background none -nolisten tcp -noreset >/dev/null 2>&1 &
pids+=($!)
exec 3>&-
await 20 test -s "$work/display"
export DISPLAY=:$(head -n1 "$work/display")

cat >"$work/dunstrc" <<EOF
[global]
    font = DejaVu Sans 11
    width = 420
    height = 160
    origin = top-right
    offset = 16x16
    padding = 12
    horizontal_padding = 14
    frame_width = 1
    corner_radius = 8
    icon_path = $icons
    max_icon_size = 48
    format = "<b>%s</b>\n%b"
[urgency_normal]
    background = "#fafafa"
    foreground = "#202124"
    frame_color = "#c8c8c8"
    timeout = 0
EOF
dunst -config "$work/dunstrc" >/dev/null 2>&1 &
pids+=($!)

# A session log as Codex writes it: a turn that began four minutes ago.
project=$HOME/src/website
log=$HOME/.codex/sessions/2026/11/24/rollout-2026-11-24T09-12-00-0196a3f2-5b7c-7e01-9d2a-4c3b2a1f0e9d.jsonl
mkdir -p "$project" "$(dirname "$log")"
stamp() { date -u -d "$1" +%Y-%m-%dT%H:%M:%S.000Z; }
began=$(stamp '-4 min')
cat >"$log" <<EOF
{"timestamp":"$began","type":"session_meta","payload":{"id":"0196a3f2-5b7c-7e01-9d2a-4c3b2a1f0e9d","cwd":"$project","originator":"codex_exec","cli_version":"0.169.0"}}
{"timestamp":"$began","type":"event_msg","payload":{"type":"task_started","turn_id":"1"}}
EOF
# The stand-in: a program file named codex in the role of `codex exec` (bash, whose
# -c takes a value as Codex's does) that holds its log open, as Codex does.
cp "$(command -v bash)" "$work/bin/codex"
(cd "$project" && exec 3<"$log" && exec "$work/bin/codex" -c 'sleep 300; :' exec) &
pids+=($!)

QT_QPA_PLATFORM=offscreen "$app" --autostart >/dev/null 2>&1 &
pids+=($!)
sleep 6 # two refreshes see it working

now=$(stamp now)
cat >>"$log" <<EOF
{"timestamp":"$now","type":"response_item","payload":{"type":"message","role":"assistant","content":[{"type":"output_text","text":"The checkout page now validates postcodes; all 214 tests pass.\nDetails below."}]}}
{"timestamp":"$now","type":"event_msg","payload":{"type":"task_complete","turn_id":"1","last_agent_message":"The checkout page now validates postcodes; all 214 tests pass.\nDetails below."}}
EOF
await 20 sh -c '[ "$(dunstctl count displayed)" -ge 1 ]'
sleep 1 # dunst draws
# The notice with a margin of the desktop around it.
read -r x y w h < <(xwininfo -root -tree | awk '/"[Dd]unst"/ && $NF ~ /^\+/ {
    split($(NF-1), size, /[x+-]/); split($NF, at, "+"); print at[2], at[3], size[1], size[2]; exit }')
import -window root -crop "$((w + 24))x$((h + 24))+$((x - 12))+$((y - 12))" +repage "$out"
echo "notice drawn into $out"
