#!/usr/bin/env bash
# types_named_once.sh ROOT: fails when two headers of the studio define a type of
# one name. They share a namespace, so linkers would silently take one for both.
set -euo pipefail
cd "$1"

twice=$(grep -rhoE '^(struct|class|enum class) [A-Z][A-Za-z]+( :.*)? \{' studio --include='*.h' |
    sed -E 's/^(struct|class|enum class) //; s/[ :].*//' | sort | uniq -d)
[ -z "$twice" ] || { echo "defined in more than one header:" $twice >&2; exit 1; }
