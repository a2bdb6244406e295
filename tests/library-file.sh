#!/bin/sh
# The library's file is the same whenever and wherever it was built, and says what it is: library-file.sh DLL
set -u
dll=$1
failed=0
fail() { echo "$1"; failed=1; }

# Of one source come the same bytes only without the time and the folder of the build.
[ "$(x86_64-w64-mingw32-objdump -p "$dll" | sed -n 's/^Time\/Date stamp[[:space:]]*//p' | sort -u)" = 0 ] || fail "it carries the time of its build"
folder=$(cd "$(dirname "$0")/.." && pwd)
! grep -qaF "$folder" "$dll" || fail "it carries the folder of its build"

# Texts of resources are UTF-16.
text() { grep -qaP "$(printf '%s' "$1" | sed 's/[.()]/\\&/g; s/\(\\\{0,1\}.\)/\1\\x00/g')" "$dll" || fail "no \"$1\" in its version"; }
text 1.0.0.0
text "Copyright (C) 2026 Dravel"
x86_64-w64-mingw32-objdump -p "$dll" | grep -q "Entry: ID: 0x00000e" || fail "no icon"
grep -qa "Microsoft.Windows.Common-Controls" "$dll" || fail "no manifest"
exit $failed
