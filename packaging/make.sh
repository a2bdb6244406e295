#!/usr/bin/env bash
# make.sh BUILD OUT: the ZIP and the installer of the library in the folder BUILD, into the folder OUT. The same library and
# pages give the same ZIP, byte for byte.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
version=$(sed -n 's/^project(Dravel VERSION \([0-9.]*\) .*/\1/p' "$root/CMakeLists.txt")
[ -n "$version" ] || { echo "CMakeLists.txt names no version."; exit 1; }

rm -rf "$out"/Dravel-* "$out/tree"
home=$out/tree/PLUGINDLLS/Dravel
mkdir -p "$home/Manual/pictures"
cp "$build/Dravel64R.dll" "$home/"
for page in Readme.txt Licences.txt; do
  sed -e "s/@VERSION@/$version/g" -e 's/$/\r/' "$root/packaging/$page" > "$home/$page"
done
{
  sed "s/@VERSION@/$version/g" "$root/packaging/manual-head.html"
  cmark-gfm -e table "$root/docs/user-guide.md"
  echo '</body></html>'
} > "$home/Manual/user-guide.html"
cp "$root"/docs/pictures/*.png "$home/Manual/pictures/"

# One time and one order for all files.
find "$out/tree" -exec touch -d '2026-01-01 00:00:00 UTC' {} +
(cd "$out/tree" && find PLUGINDLLS -type f | LC_ALL=C sort | TZ=UTC zip -q -X -9 -@ "$out/Dravel-$version.zip")

makensis -V2 -WX -DVERSION="$version" -DICON="$root/src/plugin/Dravel64R.ico" -DSTAGE="$out/tree" \
  -DDLL_SIZE="$(stat -c %s "$build/Dravel64R.dll")" -DOUT="$out/Dravel-$version-setup.exe" "$root/packaging/Dravel.nsi"
rm -r "$out/tree"
