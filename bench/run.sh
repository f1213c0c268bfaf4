#!/usr/bin/env bash
# Prints the speed and memory figures of a release build.
set -euo pipefail
build=${1:-build/release}
