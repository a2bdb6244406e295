#!/usr/bin/env bash
# Builds the library and makes what is given to a dealer of it: build/package/Dravel-<version>.zip and -setup.exe. Installs
# what is missing.
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh

install_missing "${PACKAGES_BUILD[@]}" "${PACKAGES_PACKAGE[@]}"
mkdir -p build/logs
[ -f build/windows/build.ninja ] || cmake --preset windows > build/logs/configure-windows.log
cmake --build --preset windows --target Dravel64R > build/logs/build-windows.log || { tail -n 40 build/logs/build-windows.log; exit 1; }
packaging/make.sh build/windows build/package
(cd build/package && sha256sum Dravel-*)
