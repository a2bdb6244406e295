#!/bin/sh
# Crashes the development host in each way that it knows and expects a minidump in the log's folder: crash-dumps.sh BUILD_FOLDER
# Wine and a display must be up already.
set -u
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
failed=0
mkdir -p "$build/crash"

# expect_dump KIND NAME LINE...: a script of these lines crashes and leaves one whole dump.
expect_dump() {
  kind=$1 name=crash-$2; shift 2
  printf '%s\n' "limit 40" "$@" "crash $kind" > "$build/crash/$name.script"
  SCRIPT_TIMEOUT=60 "$here/gui/run-script.sh" "$build" "$build/crash/$name.script" > "$build/crash/$name.log" 2>&1
  code=$?
  set -- "$build/gui/$name/PLUGINDLLS/Dravel/Dravel/Log"/Dravel_????????_????.dmp
  found=$(file -b "$1")
  case $code-$#-$found in
    0-* | *-[!1]-*) echo "$name: exit code $code, dumps: $*"; failed=1 ;;
    *"Mini DuMP crash report"*) echo "$name: exit code $code, $(wc -c < "$1") bytes, $found" ;;
    *) echo "$name: exit code $code, $found"; failed=1 ;;
  esac
}

for kind in access-violation throw stack-overflow; do
  expect_dump $kind $kind load open
  expect_dump $kind $kind-without-bar load
done
exit $failed
