#!/usr/bin/env bash
# Runs one test command with a private HOME, XDG_CONFIG_HOME and XDG_RUNTIME_DIR
# (0700), removed afterwards, so tests never read or write the user's settings.
set -euo pipefail
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brenvik-test.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/home" "$scratch/config" "$scratch/runtime" "$scratch/cache" "$scratch/data"
chmod 0700 "$scratch/runtime"
export HOME="$scratch/home"
export XDG_CONFIG_HOME="$scratch/config"
export XDG_RUNTIME_DIR="$scratch/runtime"
export XDG_CACHE_HOME="$scratch/cache"
export XDG_DATA_HOME="$scratch/data"
export BRENVIK_TEST_SCRATCH="$scratch"
# The tests read the English source texts, whatever language the developer uses.
export LANGUAGE=en
"$@"
