#!/bin/sh
# Checks every quoted include of the rooms against the table of what each may
# include, and that no file includes itself through others.
# usage: include_rules.sh SOURCE_DIR TABLE
set -eu
table=$(readlink -f "$2")
cd "$1"
includes=$(mktemp)
trap 'rm -f "$includes"' EXIT

# FILE:LINE:INCLUDED for every include in a room that the table names.
rooms=$(sed -n 's,^\([a-z]*/\).*,\1,p' "$table" | sort -u)
find $rooms -name '*.h' -o -name '*.cpp' -o -name '*.def' -o -name '*.c' 2>/dev/null |
    sort | xargs grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' /dev/null |
    sed -E 's/^([^:]*:[0-9]*):.*include[[:space:]]*"([^"]*)".*/\1:\2/' >"$includes"

failed=0
awk -F: '
    NR == FNR {
        if ($0 !~ /^#/ && split($0, words, /[ \t]+/) > 1)
            for (i = 2; i in words; ++i) allowed[words[1]] = allowed[words[1]] " " words[i]
        next
    }
    {
        room = ""
        for (name in allowed)
            if (index($1, name) == 1 && length(name) > length(room)) room = name
        count = split(allowed[room], may, " ")
        for (i = 1; i <= count; ++i)
            if ($3 == may[i] || (may[i] ~ /\/$/ && index($3, may[i]) == 1)) next
        printf "%s:%s: includes \"%s\"; %s may include%s\n", $1, $2, $3, room, allowed[room]
        bad = 1
    }
    END { exit bad }
' "$table" "$includes" >&2 || failed=1

# tsort names the files of a loop on stderr.
loops=$(awk -F: '{ print $1, $3 }' "$includes" | tsort 2>&1 >/dev/null | sed 's/^tsort: //') || true
if [ -n "$loops" ]; then
    echo "files that include themselves through others:" >&2
    echo "$loops" | grep -v '^-' | while read -r file; do grep -n "^$file:" "$includes" | cut -d: -f2-; done >&2
    failed=1
fi
exit $failed
