#!/bin/sh
# Checks what a module shows to the loader: one symbol, the C and C++ runtime,
# and no symbol that two loaded copies would share.
# usage: symbols.sh MODULE
set -eu
module=$1
failed=0

fail() {
    echo "$module: $1" >&2
    failed=1
}

exported=$(nm -D --defined-only "$module" | awk '{ print $NF }')
[ "$exported" = _mod_descrip ] || fail "exports other than _mod_descrip alone: $exported"

for library in $(readelf -dW "$module" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
    case $library in
        libc.so.* | libm.so.* | libstdc++.so.* | libgcc_s.so.*) ;;
        *) fail "needs $library, which is no part of the C or C++ runtime" ;;
    esac
done

unique=$(readelf -sW "$module" | awk '$5 == "UNIQUE" { print $NF }')
[ -z "$unique" ] || fail "symbols that all loaded copies share: $unique"

exit $failed
