#!/usr/bin/env bash
# demo.sh BUILD STAGE OUT: a dealer's first days, driven through the real windows: import of 10,000 lines, save, close,
# start again, a kill after ten typed trades, start again. Wine and a display are up already. Prints what happened; fails when anything did not.
set -euo pipefail
here=$(cd "$(dirname "$0")/../.." && pwd)
. "$here/tools/stage.sh"
build=$1 stage=$2 out=$3
trades=$stage/samples/trades.csv

rm -rf "$out" "$stage/PLUGINDLLS/Dravel/Dravel"
mkdir -p "$out" "$stage/PLUGINDLLS/Dravel/Dravel"
(cd "$here" && lay_stage "$build" "$stage")
cp "$here/samples/Settings.xml" "$stage/PLUGINDLLS/Dravel/Dravel/"
(cd "$stage/samples" && wine "$here/$build/make_trades.exe" --csv trades.csv --trades 9948 --duplicates 40 --unknown-lines 12 \
  --unknown-clients 3 >/dev/null)

day() {  # day SCRIPT: one life of the host
  (cd "$stage" && wine VELTSHost.exe --script "$(winepath -w "$here/tools/demo/$1.script")" --out "$(winepath -w "$here/$out")") \
    > "$out/$1.txt" 2>&1 || { cat "$out/$1.txt"; echo "The demo failed on its $1 day."; exit 1; }
}
ms() { tr -d '\r' < "$out/$1.txt" | sed -n "s/.*$2: \([0-9]*\) ms.*/\1/p"; }
frames() { tr -d '\r' < "$out/$1.txt" | sed -n 's/.* \([0-9]*\) frames TradeReport.*/\1/p' | head -n 1; }

day first
data=$stage/PLUGINDLLS/Dravel/Dravel
skipped=$(cat "$data"/Log/*.log | grep -ac 'Dravel Duplicate TRADEID')
tr -d '\r' < "$data/CSV/DravelFormateSet/ManualClientId.txt" > "$out/new-clients.txt"
asked=$(grep -acFf "$out/new-clients.txt" "$trades")
day second
# A kill is no success of the program: what counts is what the next start finds.
(cd "$stage" && wine VELTSHost.exe --script "$(winepath -w "$here/tools/demo/third.script")" --out "$(winepath -w "$here/$out")") \
  > "$out/third.txt" 2>&1 && { echo "The terminal was not killed."; exit 1; }
day fourth
[ "$(wc -l < "$out/restored.txt")" -eq $(($(wc -l < "$out/second-day.txt") + 10)) ] || { echo "The ten trades typed before the kill did not come back."; exit 1; }
cmp "$out/first-day.txt" "$out/second-day.txt" || { echo "The book did not come back as it was saved."; exit 1; }

book=$data/Data/DravelBook_Dravel.ada
lines=$(($(wc -l < "$trades") - 1))
imported=$(wc -l < "$out/first-day.txt")
if [ $((imported + skipped)) -ne "$lines" ] || [ "$(frames first)" -ne "$imported" ]; then
  echo "$lines lines, but $imported imported, $skipped skipped, $(frames first) reported."
  exit 1
fi
cat <<TEXT
A broker's file of $lines lines was imported through the import dialog in $(ms first import) ms.
  $imported trades entered the book; each was reported to the terminal at once ($(frames first) frames 30028).
  $skipped lines were skipped, each with a notice: the book held their trades already.
  $asked lines named $(wc -l < "$out/new-clients.txt") clients that nobody knew; the question was answered with OK.
The book was saved in $(ms first save) ms: $(stat -c %s "$book") bytes in $book.
The host was closed and started again: opening the book took $(ms second open) ms,
  it holds the same $imported trades, byte for byte, and reported them again ($(frames second) frames 30028).
The same file was imported once more: nothing entered the book a second time.
Ten trades were typed and the terminal was killed before anything was saved; started again it had all ten, "Not saved".
Pictures: $out/book.png (the book), $out/imported.png (right after the import), $out/restored.png (after the kill). Host reports: $out/first.txt, $out/second.txt.
TEXT
