#!/bin/sh
# Runs one script in a fresh stage folder: run-script.sh BUILD_FOLDER SCRIPT [HOST]
# BUILD_FOLDER holds the programs; HOST is VELTSHost.exe unless told. Wine and a display must be up already.
# Results (script.log, pictures, dumps) go to BUILD_FOLDER/gui/<script>/out, the exit code is the script's.
set -eu
build=$(cd "$1" && pwd)
script=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
host=${3:-VELTSHost.exe}
source=$(cd "$(dirname "$0")/../.." && pwd)
stage=$build/gui/$(basename "$script" .script)
case $(basename "$script") in without-callbacks* | master-file*) host=VELTSHostBare.exe ;; esac

rm -rf "$stage"
mkdir -p "$stage/PLUGINDLLS/Dravel" "$stage/samples" "$stage/out"
cp "$build/$host" "$stage/VELTSHost.exe"
cp "$build/Dravel64R.dll" "$stage/PLUGINDLLS/Dravel/"
cp "$source"/samples/*.csv "$stage/samples/"
cp -R "$source/samples/brokers" "$stage/samples/"
case $(basename "$script") in import-sets*)
  mkdir -p "$stage/PLUGINDLLS/Dravel/Dravel/CSV/DravelFormateSet"
  cp "$source"/samples/formatsets/*.CSV "$stage/PLUGINDLLS/Dravel/Dravel/CSV/DravelFormateSet/"
  head -c 300000 /dev/zero > "$stage/PLUGINDLLS/Dravel/Dravel/CSV/DravelFormateSet/Torn.CSV" ;;
esac
# A terminal that answers no requests, but has the file that it would answer from.
case $(basename "$script") in master-file*) cp "$source/samples/SecurityMaster.csv" "$stage/" ;; esac
case $(basename "$script") in bad-input*)
  # What a broken disk leaves: neither may keep the book from opening.
  mkdir -p "$stage/PLUGINDLLS/Dravel/Dravel/Data"
  yes '<A>"#' | head -c 5000 > "$stage/PLUGINDLLS/Dravel/Dravel/Settings.xml"
  yes '<A>"#' | head -c 5000 > "$stage/PLUGINDLLS/Dravel/Dravel/Data/DravelBook_Dravel.ada" ;;
esac
case $(basename "$script") in import-cancel* | import-bar-gone* | import-save-close* | menu-unload*)
  wine "$build/make_trades.exe" --csv "$(winepath -w "$stage/samples/many.csv")" --trades 300000 --duplicates 40 ;;
esac
case $(basename "$script") in many-clients*)
  seq 3000 | awk 'BEGIN { print "clientid,exchange,securitytype,symbol,exchangetradeid,side,quantity,price" }
    { print "C" $1 ",XNSE,EQ,ARYASTEEL,T" $1 ",Buy,100,1.5" }' > "$stage/samples/many-clients.csv" ;;
esac
set +e
timeout "${SCRIPT_TIMEOUT:-300}" wine "$stage/VELTSHost.exe" --script "$script" --out "$stage/out"
code=$?
set -e
# A program that was ended from outside has not said that it is done.
[ $code -ne 0 ] || grep -q '^[0-9:.]* OK ' "$stage/out/script.log" || code=3
exit $code
