#!/usr/bin/env bash
# Installs a build into a temporary prefix, stripped as the README says, and
# checks what a desktop reads of it: the desktop entry and the AppStream
# metadata pass their validators, and the programs carry no symbol tables.
# Usage: install-check.sh BUILD_DIR
set -euo pipefail
build=$1
prefix=$(mktemp -d "${BRENVIK_TEST_SCRATCH:-/tmp}/prefix.XXXXXX")
trap 'rm -rf "$prefix"' EXIT
fail() { echo "install check FAILED: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" --strip >/dev/null
desktop-file-validate "$prefix/share/applications/brenvik.desktop" ||
    fail "desktop-file-validate rejects the desktop entry"
appstreamcli validate --no-net --pedantic "$prefix/share/metainfo/io.github.brenvik.Brenvik.metainfo.xml" >/dev/null ||
    fail "appstreamcli rejects the metadata"
for program in brenvik brenvik-status; do
    [[ -x $prefix/bin/$program ]] || fail "$program not installed"
    if readelf -S "$prefix/bin/$program" | grep -q '\.symtab'; then
        fail "$program is not stripped"
    fi
done
for file in share/icons/hicolor/scalable/apps/brenvik.svg share/icons/hicolor/64x64/apps/brenvik.png; do
    [[ -f $prefix/$file ]] || fail "$file not installed"
done
echo "installed, stripped and valid: $(cd "$prefix" && find . -type f | wc -l) files"
