#!/bin/sh
# Compiles each header of host/ by itself.
# usage: headers_alone.sh SOURCE_DIR COMPILER [OPTION...]
set -u
cd "$1" || exit 1
shift
failed=0
for header in host/*.h host/*/*.h; do
    # A header that is the main file would not show a missing include guard.
    printf '#include "%s"\n#include "%s"\n' "$header" "$header" |
        "$@" -I. -Wall -Wextra -Wpedantic -Werror -fsyntax-only - || failed=1
done
exit $failed
