# Sourced by cases that need a .glb of their own.
pack() { # JSON and binary chunk to a .glb: pack JSON_FILE BIN_FILE
    local json bin
    json=$(cat "$1"); while [ $((${#json} % 4)) -ne 0 ]; do json+=' '; done
    bin=$(stat -c %s "$2")
    word() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $((($1 >> 8) & 255)))\\x$(printf %02x $((($1 >> 16) & 255)))\\x$(printf %02x $((($1 >> 24) & 255)))"; }
    printf glTF; word 2; word $((28 + ${#json} + bin)); word ${#json}; printf 'JSON%s' "$json"
    word "$bin"; printf 'BIN\0'; cat "$2"
}
