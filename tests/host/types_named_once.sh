#!/usr/bin/env bash
# types_named_once.sh ROOT: fails when two headers of the studio define a type of
# one name in one namespace: linkers would silently take one for both.
set -euo pipefail
cd "$1"

twice=$(find studio -name '*.h' -exec awk '
    FNR == 1 { space = "" }
    /^namespace [a-z:]+ \{/ { space = $2 }
    /^(struct|class|enum class) [A-Z][A-Za-z]+( :.*)? \{/ {
        print space "::" ($1 == "enum" ? $3 : $2)
    }' {} + | sort | uniq -d)
[ -z "$twice" ] || { echo "defined in more than one header:" $twice >&2; exit 1; }
