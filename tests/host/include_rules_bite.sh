#!/bin/sh
# Runs the include check over a tree with known faults.
# usage: include_rules_bite.sh FOLDER_OF_THE_CHECK
set -u
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/host" "$tree/studio/link" "$tree/zones"
status=0

# expect FILE:LINE - with the faults now in the tree; nothing for a clean tree
expect() {
    found=$("$1/include_rules.sh" "$tree" "$1/include_rules.txt" 2>&1)
    code=$?
    if [ -z "$2" ]; then
        [ $code -eq 0 ] || { echo "a clean tree fails: $found"; status=1; }
    elif [ $code -eq 0 ] || ! echo "$found" | grep -q "$2"; then
        echo "expected a fault at $2, got: $found"
        status=1
    fi
}

mkdir -p "$tree/plugin" "$tree/shading" "$tree/persist" "$tree/panel"
echo '#include "host/types.h"' >"$tree/studio/link/a.h"
printf '#include <vector>\n#include "persist/stored_fields.h"\n' >"$tree/studio/link/b.cpp"
expect "$1" ""
printf '\n#include "persist/state_block.h"\n' >"$tree/studio/link/b.cpp"
expect "$1" "studio/link/b.cpp:2"
printf '#  include "a.h"\n' >"$tree/studio/link/b.cpp"
expect "$1" "studio/link/b.cpp:1"
rm "$tree/studio/link/b.cpp"
echo '#include "zones/zone.h"' >"$tree/host/h.h"
expect "$1" "host/h.h:1"
rm "$tree/host/h.h"
echo '#include "zones/b.h"' >"$tree/zones/a.h"
echo '#include "zones/a.h"' >"$tree/zones/b.h"
expect "$1" "zones/a.h:1"
exit $status
