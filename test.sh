#!/usr/bin/env bash
# Builds and tests everything: the core under ASan and UBSan, its threads under TSan, the library and its windows under
# Wine, the rules of the house. Installs what is missing. Ends with one line "N passed, N failed".
set -uo pipefail
cd "$(dirname "$0")"
. tools/packages.sh
. tools/wine.sh
export LC_ALL=C.UTF-8

passed=0 failed=0
mkdir -p build/logs

# check NAME COMMAND...: one test; its output is shown only when it fails.
check() {
  local name=$1 log="build/logs/${1//[^A-Za-z0-9_.-]/_}.log"; shift
  local began=$SECONDS
  if "$@" >"$log" 2>&1; then
    passed=$((passed + 1)); printf 'ok      %-52s %4d s\n' "$name" $((SECONDS - began))
  else
    failed=$((failed + 1)); printf 'FAILED  %-52s (%s)\n' "$name" "$log"; tail -n 40 "$log" | sed 's/^/    /'
  fi
}

# suite NAME COMMAND...: a GoogleTest program; each of its tests counts. begin starts it beside what follows, end waits for it.
declare -A begun
begin() {
  local name=$1 log="build/logs/${1//[^A-Za-z0-9_.-]/_}.log"; shift
  ( from=$SECONDS; "$@" >"$log" 2>&1; echo "$? $((SECONDS - from))" >"$log.end" ) &
  begun[$name]=$!
}
end() {
  local name=$1 log="build/logs/${1//[^A-Za-z0-9_.-]/_}.log" code took ok bad
  wait "${begun[$name]}"
  read -r code took <"$log.end"
  ok=$(tr -d '\r' <"$log" | sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\{0,1\}\..*/\1/p' | tail -n 1)
  bad=$(tr -d '\r' <"$log" | sed -n 's/^ *\([0-9]*\) FAILED TESTS\{0,1\}$/\1/p' | tail -n 1)
  # A crash leaves no closing line: that is a failure, whatever the exit code says.
  if [ -z "$ok" ] || { [ "$code" -ne 0 ] && [ -z "$bad" ]; }; then bad=$((${bad:-0} + 1)); fi
  if [ "${ok:-0}" -eq 0 ] && [ -z "$bad" ]; then bad=1; fi
  passed=$((passed + ${ok:-0})); failed=$((failed + ${bad:-0}))
  printf '%-7s %-52s %4d s  %s passed, %s failed\n' "$([ -z "$bad" ] && echo ok || echo FAILED)" "$name" "$took" "${ok:-0}" "${bad:-0}"
  if [ -n "$bad" ]; then grep -aE '^\[  FAILED|Failure|error|ERROR|WARNING: ThreadSanitizer' "$log" | head -n 30 | sed 's/^/    /'; tail -n 15 "$log" | sed 's/^/    /'; fi
}
suite() { begin "$@"; end "$1"; }

# build PRESET TARGET...: configures once, then builds; a failure ends the run.
build() {
  local preset=$1; shift
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >"build/logs/configure-$preset.log" 2>&1 ||
    { cat "build/logs/configure-$preset.log"; echo "$passed passed, $((failed + 1)) failed"; exit 1; }
  cmake --build --preset "$preset" --target "$@" >"build/logs/build-$preset.log" 2>&1 ||
    { grep -aE 'error|FAILED|undefined' -A3 "build/logs/build-$preset.log" | head -n 60; echo "$passed passed, $((failed + 1)) failed"; exit 1; }
  echo "built   $preset ($SECONDS s so far)"
}

formatted() { git ls-files -z -- '*.h' '*.cpp' | xargs -0 clang-format --dry-run -Werror; }

# The library must export its four entries and nothing else, and need nothing but the system.
exports() {
  x86_64-w64-mingw32-objdump -p "$1" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/p' | awk '/^\t\[/ {print $NF}' | LC_ALL=C sort |
    diff - <(printf '%s\n' DravelBar GetDllInfo OnMessage OnPluginMessage)
}
imports() {
  ! x86_64-w64-mingw32-objdump -p "$1" | sed -n 's/^\tDLL Name: //p' | tr a-z A-Z |
    grep -vxE '(KERNEL32|USER32|GDI32|COMCTL32|SHELL32|OLE32|ADVAPI32|MSVCRT|SHLWAPI|UXTHEME)\.DLL'
}

install_missing "${PACKAGES_BUILD[@]}" "${PACKAGES_WINE[@]}" "${PACKAGES_TEST[@]}" "${PACKAGES_PACKAGE[@]}" || { echo "$passed passed, $((failed + 1)) failed"; exit 1; }

check "sources are formatted" formatted

build linux-asan dravel_tests
begin "core, ASan and UBSan" build/linux-asan/dravel_tests

build linux-tsan dravel_tests
begin "threads, TSan" build/linux-tsan/dravel_tests '--gtest_filter=Threads*'

build windows-checked all
check "the library exports four names" exports build/windows-checked/Dravel64R.dll
check "the library needs only the system" imports build/windows-checked/Dravel64R.dll
check "the library says what it is" tests/library-file.sh build/windows-checked/Dravel64R.dll

windows() {
  local script
  for script in "$@"; do
    check "window: $(basename "$script" .script)" tests/gui/run-script.sh build/windows-checked "$script"
  done
}

# Two tracks, each with a display and a prefix of its own.
(
  trap stop_wine EXIT
  start_xvfb && start_wine "$PWD/build/wine-beside" desktop
  windows tests/gui/{grid,import}-*.script
  check "the demo's days" tools/demo/demo.sh build/windows-checked build/windows-checked/demo/stage build/windows-checked/demo/out
  check "a crash leaves a minidump" tests/crash-dumps.sh build/windows-checked
  check "a kill loses no trade that waits" tests/waiting-trades.sh build/windows-checked
  check "twenty kills lose nothing half a second old" tests/journal-kills.sh build/windows-checked
  check "package: install, update, refuse, uninstall, unzip" packaging/test-package.sh build/windows-checked
  echo "that was beside"
) >build/logs/beside.txt 2>&1 &
beside=$!

trap stop_wine EXIT
start_xvfb && start_wine "$PWD/build/wine" desktop
suite "core, checked, under Wine" wine build/windows-checked/dravel_tests.exe
windows $(ls tests/gui/*.script | grep -vE '/(grid|import)-')

wait "$beside"
sed '$d' build/logs/beside.txt
passed=$((passed + $(grep -c '^ok ' build/logs/beside.txt)))
failed=$((failed + $(grep -c '^FAILED' build/logs/beside.txt)))
[ "$(tail -n 1 build/logs/beside.txt)" = "that was beside" ] || failed=$((failed + 1))
end "core, ASan and UBSan"
end "threads, TSan"

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
