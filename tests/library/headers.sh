#!/bin/sh
# Every public header of the parser library compiles alone as C11. usage: headers.sh CC SOURCE_DIR
set -eu
for header in "$2"/IbisParser/*.h; do
    printf '#include "%s"\nint unused_but_not_empty;\n' "$header" |
        "$1" -std=c11 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I "$2" -x c -
done
