#!/usr/bin/env bash
# import-speed.sh BUILD [LINES]: how many lines a second an import in the development host takes, with all its callbacks. Wine and a
# display are up already.
set -euo pipefail
here=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "$1" && pwd)
lines=${2:-1000000}
stage=$build/import-speed
. "$here/tools/stage.sh"
rm -rf "$stage"
mkdir -p "$stage/out"
(cd "$here" && lay_stage "$build" "$stage")
wine "$build/make_trades.exe" --csv "$(winepath -w "$stage/samples/many.csv")" --trades "$lines"
(cd "$stage" && wine VELTSHost.exe --script "$(winepath -w "$here/tools/demo/import-speed.script")" --out "$(winepath -w "$stage/out")") \
  > "$stage/out/log.txt" 2>&1 || { cat "$stage/out/log.txt"; exit 1; }
ms=$(tr -d '\r' < "$stage/out/log.txt" | sed -n 's/.*import: \([0-9]*\) ms.*/\1/p')
echo "$lines lines in $ms ms: $((lines * 1000 / ms)) lines a second"
