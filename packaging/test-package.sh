#!/usr/bin/env bash
# test-package.sh BUILD: makes the package of BUILD's library (debug info apart: packing that takes most of the time) in
# BUILD/package and tries it on a folder that stands for a terminal: install, update, refuse while the library is loaded, uninstall, unzip. Wine and a display must be up.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)

stage="$build/package/a terminal"  # a blank in its name, as a dealer's folder has
home=$stage/PLUGINDLLS/Dravel
library=$build/package/stripped/Dravel64R.dll
fail() { echo "FAILED: $*"; exit 1; }
said() { echo "ok: $*"; }
tree() { (cd "$stage" && find . -type f ! -name loaded ! -name done -exec sha256sum {} + | LC_ALL=C sort); }
installed() { cmp "$library" "$home/Dravel64R.dll" && [ ! -e "$home/Dravel64R.dll.new" ]; }

# run PROGRAM [ARGUMENT...]: its exit code, as a batch file of the system's shell sees it (a folder with a blank cannot be
# handed over otherwise).
run() {
  printf '@echo off\r\n"%s" %s\r\nexit %%errorlevel%%\r\n' "$(winepath -w "$1")" "${*:2}" > "$build/package/run.bat"
  local code=0
  wine cmd /c "$(winepath -w "$build/package/run.bat")" || code=$?
  return $code
}

mkdir -p "$build/package/stripped"
x86_64-w64-mingw32-strip -o "$library" "$build/Dravel64R.dll"
"$root/packaging/make.sh" "$build/package/stripped" "$build/package"
setup=$(echo "$build"/package/Dravel-*-setup.exe)
zip=$(echo "$build"/package/Dravel-*.zip)
rm -rf "$stage" "$build/package/unpacked"
mkdir -p "$home/Dravel/Data"
echo book > "$home/Dravel/Data/DravelBook_Dravel.ada"
cp "$build/VELTSHost.exe" "$stage/"
target=$(winepath -w "$stage")

code=0; run "$setup" /S '/D=Z:\no\such\folder' || code=$?
[ $code -eq 3 ] && [ ! -e "$home/Dravel64R.dll" ] || fail "a folder that is not there gave $code"
said "a folder that is not there is refused with 3"

wine reg delete 'HKLM\Software\Dravel' /f >/dev/null 2>&1 || true
code=0; run "$setup" /S > "$build/package/refusal.txt" || code=$?
[ $code -eq 3 ] && grep -q 'no such folder' "$build/package/refusal.txt" || fail "no folder at all gave $code"
said "no folder at all is refused with 3"

run "$setup" /S "/D=$target" || fail "install gave $?"
installed || fail "the library is not the one that was packed"
for file in Readme.txt Licences.txt Manual/user-guide.html Uninstall-Dravel.exe; do [ -s "$home/$file" ] || fail "no $file"; done
said "installed, byte for byte"

echo old > "$home/Dravel64R.dll"
run "$setup" /S || fail "update gave $?"
installed || fail "the update left the old library"
said "updated in the remembered folder"

echo old > "$home/Dravel64R.dll"
mv "$home/Readme.txt" "$home/Licences.txt" "$build/package"
mkdir "$home/Readme.txt"
code=0; run "$setup" /S > "$build/package/refusal.txt" || code=$?
[ $code -eq 2 ] && grep -q 'Not all files' "$build/package/refusal.txt" || fail "a page that cannot be written gave $code"
[ "$(cat "$home/Dravel64R.dll")" = old ] && [ ! -e "$home/Dravel64R.dll.new" ] || fail "the library went ahead of its pages"
rmdir "$home/Readme.txt"
run "$setup" /S || fail "installing after that gave $?"
installed && [ -s "$home/Readme.txt" ] && [ -s "$home/Licences.txt" ] || fail "installing after that left something out"
said "a page that cannot be written: exit code 2, and the library stays"

(cd "$stage" && exec wine VELTSHost.exe --script "$(winepath -w "$root/packaging/keep-loaded.script")") > "$build/package/host.txt" 2>&1 &
host=$!
trap 'touch "$stage/done"' EXIT  # ends the host, also after a failure
for _ in $(seq 300); do [ -e "$stage/loaded" ] && break; kill -0 $host 2>/dev/null || fail "the host has ended"; sleep 0.1; done
tree > "$build/package/before"
code=0; run "$setup" /S > "$build/package/refusal.txt" || code=$?
[ $code -eq 2 ] || fail "installing over a loaded library gave $code"
code=0; run "$home/Uninstall-Dravel.exe" /S "_?=$(winepath -w "$home")" >> "$build/package/refusal.txt" || code=$?
[ $code -eq 2 ] || fail "uninstalling a loaded library gave $code"
tree | grep -v ' ./script.log' | diff <(grep -v ' ./script.log' "$build/package/before") - || fail "a refusal changed something"
[ "$(grep -c 'is in use or write-protected' "$build/package/refusal.txt")" -eq 2 ] || fail "the refusals did not say why"
touch "$stage/done"
wait $host || fail "the host gave $?"
said "a loaded library is neither replaced nor removed: exit code 2, nothing changed"

run "$home/Uninstall-Dravel.exe" /S || fail "uninstall gave $?"  # a copy of it does the work and outlives it
for _ in $(seq 100); do [ -e "$home/Uninstall-Dravel.exe" ] || break; sleep 0.1; done
[ "$(cd "$home" && find . -type f)" = ./Dravel/Data/DravelBook_Dravel.ada ] || fail "left over: $(cd "$home" && find . -type f)"
[ "$(cat "$home/Dravel/Data/DravelBook_Dravel.ada")" = book ] || fail "the book is not what it was"
! wine reg query 'HKLM\Software\Dravel' >/dev/null 2>&1 || fail "the registry still names the folder"
said "uninstalled; the book stays"

unzip -q "$zip" -d "$build/package/unpacked"
cp "$build/VELTSHost.exe" "$build/package/unpacked/"
mkdir "$build/package/unpacked/samples" && cp "$root"/samples/*.csv "$build/package/unpacked/samples/"
(cd "$build/package/unpacked" && wine VELTSHost.exe --script "$(winepath -w "$root/packaging/open-book.script")") || fail "the unpacked book gave $?"
cmp "$library" "$build/package/unpacked/PLUGINDLLS/Dravel/Dravel64R.dll" || fail "the library in the ZIP differs"
[ -s "$build/package/unpacked/PLUGINDLLS/Dravel/Dravel/Data/DravelBook_Dravel.ada" ] || fail "no book was saved"
said "unzipped, opened, saved"
