#!/usr/bin/env bash
# Code lines per folder (C++, shell and JavaScript; blank and comment-only lines
# left out) and the share of them that is test code.
set -euo pipefail
cd "$(dirname "$0")/.."
count() { # count FOLDER
    git ls-files "$1" | while read -r f; do
        case $f in
            *.cpp | *.h | *.mjs | *.js) echo "c $f" ;;
            *.sh) echo "s $f" ;;
            *) [[ $(head -c 20 "$f" 2>/dev/null) == '#!'*sh* ]] && echo "s $f" ;;
        esac
    done | while read -r kind f; do
        if [[ $kind == c ]]; then
            grep -cvE '^\s*($|//|/\*|\*)' "$f" || true
        else
            grep -cvE '^\s*($|#)' "$f" || true
        fi
    done | awk '{ n += $1 } END { print n + 0 }'
}
total=0
for folder in src tests bench tools; do
    n=$(count "$folder")
    printf '%-6s %6d lines\n' "$folder" "$n"
    total=$((total + n))
    [[ $folder == tests ]] && tests=$n
done
awk -v t="$tests" -v a="$total" 'BEGIN { printf "test code: %d of %d lines, %.1f %% (goal at most a third)\n", t, a, 100 * t / a }'
