#!/bin/bash
# Kills the development host after the terminal handed trades over without a bar, starts it again, and answers the
# question about them: waiting-trades.sh BUILD_FOLDER
# Wine and a display must be up already.
set -u
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
mkdir -p "$build/waiting"
failed=0

# run NAME LINE...: a script of these lines, in a fresh folder the first time and in the one that it left afterwards.
run() {
  local name=$1 stage=$build/gui/waiting-trades; shift
  printf '%s\n' "limit 40" "$@" > "$build/waiting/waiting-trades.script"
  if [ "$name" = fresh ]; then
    SCRIPT_TIMEOUT=60 "$here/gui/run-script.sh" "$build" "$build/waiting/waiting-trades.script" > "$build/waiting/$name.log" 2>&1
  else
    timeout 100 wine "$stage/VELTSHost.exe" --script "$build/waiting/waiting-trades.script" --out "$stage/out" > "$build/waiting/$name.log" 2>&1
  fi
}
expect() { [ "$1" = 0 ] || { echo "$2"; failed=1; cat "$build/waiting/$2.log"; }; }
waiting() { ls "$build/gui/waiting-trades/PLUGINDLLS/Dravel/Dravel/Data/" | grep -c waiting-; }
question="20 trades that the terminal handed over on $(TZ=${TZ:-} date +%d%b%Y) never reached the book. Add them?"

run fresh load "send-trade 20" "crash kill"
[ "$(waiting)" = 1 ] || { echo "no file of the killed process"; failed=1; }
run cancelled load open "expect-box Dravel \"$question\" Cancel" "expect-rows 0" "count-frames TradeReport 0" close-frame unload
expect $? cancelled
# Killed as soon as they are in: the journal has them, so nobody is asked about them again.
run added load open "wait-dialog Dravel" "screenshot waiting.png" "expect-box Dravel \"$question\" Yes" "expect-rows 20" \
  "count-frames TradeReport 20" "count-frames SecondTradeReport 0" "pause 700" "crash kill"
run again load open "expect-rows 20" "wait-notice \"20 changes since the last save were restored\"" "pause 300" no-dialogs \
  "command save" "wait-notice \"Dravel Save Successfully\"" close-frame unload
expect $? again
[ "$(waiting)" = 0 ] || { echo "the file stays although the journal has its trades"; failed=1; }
run last load open "expect-rows 20" "no-dialogs" close-frame unload
expect $? last
exit $failed
