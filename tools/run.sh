#!/usr/bin/env bash
# Starts the program from a build directory.
set -euo pipefail
build=${1:-build/release}
exec "$build/src/app/brenvik-status" --watch
