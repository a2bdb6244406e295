#!/usr/bin/env bash
# Builds the plug-in and the development host and starts them. With a display: the real window, to be used. Without one: the
# demo, which leaves pictures and files in build/demo. Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh
. tools/wine.sh
. tools/stage.sh

install_missing "${PACKAGES_BUILD[@]}" "${PACKAGES_WINE[@]}"
mkdir -p build/logs
[ -f build/windows/build.ninja ] || cmake --preset windows > build/logs/configure-windows.log
cmake --build --preset windows --target Dravel64R VELTSHost make_trades > build/logs/build-windows.log || { tail -n 40 build/logs/build-windows.log; exit 1; }

if [ -n "${DISPLAY:-}" ] && [ "${1:-}" != --demo ]; then
  start_wine "$PWD/build/wine-desktop"
  lay_stage build/windows build/stage
  cd build/stage
  exec wine VELTSHost.exe
fi

trap stop_wine EXIT
start_xvfb
start_wine "$PWD/build/wine" desktop
tools/demo/demo.sh build/windows build/stage build/demo
