#!/usr/bin/env bash
# Fails when a translation misses a text, holds one unfinished, lacks a plural
# form, or is out of date with the sources; and when brenvik-status does not
# speak a language it has a translation for.
# Usage: check-translations.sh SOURCE_DIR LUPDATE BRENVIK_STATUS LUPDATE_OPTIONS...
set -euo pipefail
source_dir=$1 lupdate=$2 status_command=$3
shift 3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0
cp "$source_dir"/translations/*.ts "$scratch"/
# lupdate on a copy: any change means the sources hold texts the file lacks
# (or no longer hold some it has).
"$lupdate" "$@" "$source_dir/src" -ts "$scratch"/*.ts >/dev/null
for ts in "$source_dir"/translations/*.ts; do
    name=$(basename "$ts")
    if ! cmp -s "$ts" "$scratch/$name"; then
        echo "$name is out of date: run cmake --build <dir> --target update_translations" >&2
        diff "$ts" "$scratch/$name" | head -n 20 >&2 || true
        failed=1
    fi
    if grep -nE 'type="(unfinished|vanished|obsolete)"|<translation></translation>|<translation/>|<numerusform></numerusform>' \
        "$ts" >&2; then
        echo "$name: the texts above have no finished translation" >&2
        failed=1
    fi
    language=${name#brenvik_}
    language=${language%.ts}
    if [[ $(LANGUAGE=$language "$status_command" --help) == $(LANGUAGE=en "$status_command" --help) ]]; then
        echo "brenvik-status --help is not in the language of $name" >&2
        failed=1
    fi
done
((failed == 0)) && echo "translations: complete and up to date"
exit "$failed"
