#!/usr/bin/env bash
# Fails when a folder of src/ includes one above it. Each folder is a layer
# and may include only the layers below it (the command-line companion, last,
# may include everything).
# Usage: check-layers.sh SOURCE_DIR
set -euo pipefail
cd "$1/src"
order=(detection sessionlog monitor places preferences notify views app cli)
rank() {
    local i
    for i in "${!order[@]}"; do
        [[ ${order[$i]} == "$1" ]] && { echo "$i"; return; }
    done
    echo -1
}
status=0
for folder in */; do
    folder=${folder%/}
    from=$(rank "$folder")
    if ((from < 0)); then
        echo "src/$folder is no known layer" >&2
        status=1
        continue
    fi
    while IFS=: read -r file line include; do
        to=$(rank "$include")
        if ((to > from)); then
            echo "src/$file:$line includes $include/, a layer above $folder/" >&2
            status=1
        fi
    done < <(grep -rnoE '^#include "[a-z]+/' "$folder" --include='*.h' --include='*.cpp' |
             sed -E 's/#include "([a-z]+)\//\1/')
done
((status == 0)) && echo "layers: every include goes downwards"
exit "$status"
