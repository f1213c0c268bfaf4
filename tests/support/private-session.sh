#!/usr/bin/env bash
# Runs COMMAND on a private session bus and, where one can be had, in a PID namespace
# of its own: Brenvik watches the whole process table, and Codex sessions (or other
# tests' stand-ins) elsewhere on the machine must not count in what it shows.
# Usage: private-session.sh COMMAND [ARGUMENT...]
set -euo pipefail
if unshare -fp --mount-proc true 2>/dev/null; then
    exec unshare -fp --mount-proc dbus-run-session -- "$@"
fi
exec dbus-run-session -- "$@"
