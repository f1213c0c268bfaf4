#!/usr/bin/env bash
# The Debian package as a machine would get it: lintian finds nothing to report,
# and unpacked (dpkg-deb -x, nothing installed) its programs run, its desktop
# entry, AppStream metadata and man pages pass their checkers, its programs are
# stripped, and the icons, completions and translations are where desktops and
# shells look. Also: `make run`'s package list holds nothing only tests need.
set -euo pipefail
source=${BRENVIK_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
fail() { echo "package check FAILED: $*" >&2; exit 1; }

run_list=$("$source/tools/install-deps.sh" --dry-run run)
for p in xvfb xdotool dunst weston xfce4-panel libgtest-dev lintian tmux xterm imagemagick; do
    grep -qx "$p" <<<"$run_list" && fail "make run would install $p, which only tests need"
done

deb=$("$source/tools/build-deb.sh" "$source/build/package") || fail "the package did not build"
lintian_out=$(lintian --fail-on error,warning "$deb" 2>&1) || fail "lintian: $lintian_out"

root=$(mktemp -d "${BRENVIK_TEST_SCRATCH:-/tmp}/deb.XXXXXX")
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root"
usr=$root/usr
for program in brenvik brenvik-status; do
    "$usr/bin/$program" --version >/dev/null || fail "$program does not run from the package"
    readelf -S "$usr/bin/$program" | grep -q '\.symtab' && fail "$program is not stripped"
    for file in "share/man/man1/$program.1.gz" "share/bash-completion/completions/$program" \
        "share/zsh/vendor-completions/_$program" "share/fish/vendor_completions.d/$program.fish"; do
        [[ -f $usr/$file ]] || fail "$file is missing"
    done
    [[ -z $(mandoc -T lint -W warning "$usr/share/man/man1/$program.1.gz" 2>&1) ]] ||
        fail "mandoc: $(mandoc -T lint -W warning "$usr/share/man/man1/$program.1.gz" 2>&1)"
done
desktop-file-validate "$usr/share/applications/brenvik.desktop" || fail "desktop-file-validate rejects the desktop entry"
appstreamcli validate --no-net --pedantic "$usr/share/metainfo/io.github.brenvik.Brenvik.metainfo.xml" >/dev/null ||
    fail "appstreamcli rejects the metadata"
for file in share/icons/hicolor/scalable/apps/brenvik.svg share/icons/hicolor/64x64/apps/brenvik.png \
    share/brenvik/translations/brenvik_de.qm share/brenvik/translations/brenvik_fr.qm share/doc/brenvik/copyright; do
    [[ -f $usr/$file ]] || fail "$file is missing"
done
echo "$(basename "$deb"): lintian clean, $(find "$root" -type f | wc -l) files, all in place"
