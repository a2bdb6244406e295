#!/bin/bash
# Kills the terminal again and again, in the midst of trades, saves and rows being typed, and expects after each new
# start what was there half a second before: journal-kills.sh BUILD_FOLDER [ROUNDS]
# Wine and a display must be up already.
set -u
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
rounds=${2:-20}
work=$build/journal-kills stage=$build/gui/journal-kills
mkdir -p "$work"
failed=0
RANDOM=7

# life NAME LINE...: one life of the terminal; the first one in a fresh folder.
life() {
  local name=$1; shift
  printf '%s\n' "limit 60" load open "$@" > "$work/journal-kills.script"
  if [ "$name" = 1 ]; then
    SCRIPT_TIMEOUT=90 "$here/gui/run-script.sh" "$build" "$work/journal-kills.script" > "$work/$name.log" 2>&1
  else
    timeout 90 wine "$stage/VELTSHost.exe" --script "$work/journal-kills.script" --out "$stage/out" > "$work/$name.log" 2>&1
  fi
}
rows() { wc -l < "$stage/out/rows.txt"; }

lowest=0 highest=0
for round in $(seq "$rounds"); do
  old=$((RANDOM % 30 + 1)) young=$((RANDOM % 30))
  lines=("dump-grid rows.txt" "send-trade $old" "pause 600")
  [ $((RANDOM % 3)) = 0 ] && lines+=("command save" "wait-notice \"Dravel Save Successfully\"")
  lines+=("send-trade $young")
  case $((RANDOM % 4)) in
    0) lines+=("command save") ;;  # killed while it runs
    1) lines+=("pause $((RANDOM % 700))") ;;
  esac
  life "$round" "${lines[@]}" "crash kill"
  [ -s "$stage/out/rows.txt" ] || [ "$highest" = 0 ] || { echo "round $round did not open the book"; cat "$work/$round.log"; failed=1; break; }
  found=$(rows)
  if [ "$found" -lt "$lowest" ] || [ "$found" -gt "$highest" ]; then
    echo "round $round: $found trades, between $lowest and $highest expected"
    failed=1
  fi
  lowest=$((found + old)) highest=$((found + old + young))
  rm -f "$stage/out/rows.txt"
done

# The frame is destroyed while WM_QUIT is under way: the question at the end is no answer, and nothing is lost by it.
life quit "dump-grid rows.txt" "send-trade 7" "crash quit"
before=$(rows)
life after "dump-grid rows.txt" "crash kill"
[ "$(rows)" -eq $((before + 7)) ] || { echo "the end without an answer: $(rows) of $((before + 7)) trades"; failed=1; }

# A row that is being typed is there again as well.
life typed "focus-grid" "key insert" "type XNSE" "key enter" "pause 700" "dump-grid rows.txt" "crash kill"
with=$(rows)
if ! life last "wait-until rows $with" "expect-cell 0 10 XNSE" "expect-status \"Not saved, 1 row is still being typed\"" \
  "wait-notice \"*since the last save were restored\"" "screenshot restored.png" \
  "prepare-answer \"Dravel\" \"Do you want to save Dravel\" Yes" close-frame unload; then
  cat "$work/last.log"; failed=1
fi
[ "$failed" != 0 ] || echo "$rounds kills, nothing lost that was half a second old"
exit $failed
