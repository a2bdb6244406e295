# lay_stage BUILD STAGE [HOST]: a terminal's folder as a dealer has it: host, plug-in, samples. What the plug-in keeps there
# (PLUGINDLLS/Dravel/Dravel) is left alone, but for sample format sets that are not there. Sourced.
lay_stage() {
  local build=$1 stage=$2 host=${3:-VELTSHost}
  mkdir -p "$stage/PLUGINDLLS/Dravel" "$stage/samples"
  cp "$build/$host.exe" "$stage/$host.exe"
  cp "$build/Dravel64R.dll" "$stage/PLUGINDLLS/Dravel/"
  cp samples/*.csv "$stage/samples/"
  cp -R samples/brokers "$stage/samples/"
  mkdir -p "$stage/PLUGINDLLS/Dravel/Dravel/CSV/DravelFormateSet"
  cp -n samples/formatsets/*.CSV "$stage/PLUGINDLLS/Dravel/Dravel/CSV/DravelFormateSet/"
}
