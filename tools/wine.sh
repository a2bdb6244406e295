# A Wine prefix under the build folder and, without a display, an Xvfb of its own. Sourced; ends what it started.
export LC_ALL=C.UTF-8 WINEDEBUG=-all WINEARCH=win64
export WINEDLLOVERRIDES='mscoree=;mshtml=;winedbg.exe=d;winemenubuilder.exe=d'

# start_xvfb: a new display whose number the X server chooses itself; sets DISPLAY and XVFB_PID.
start_xvfb() {
  local file; file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 "${1:-1280x800x24}" -nolisten tcp 3>"$file" >/dev/null 2>&1 &
  XVFB_PID=$!
  until [ -s "$file" ]; do kill -0 "$XVFB_PID" 2>/dev/null || { echo "Xvfb did not start" >&2; return 1; }; done
  DISPLAY=":$(cat "$file")"; export DISPLAY
  rm -f "$file"
}

# start_wine PREFIX [desktop]: makes the prefix when it is new. A crash ends the program instead of showing a window.
# desktop: all windows in one virtual desktop, for a display without a window manager.
start_wine() {
  export WINEPREFIX=$1
  mkdir -p "$WINEPREFIX"
  wineserver -p || true  # a running one keeps running
  [ -f "$WINEPREFIX/dravel-ready" ] && return 0
  env -u DISPLAY wineboot -i >/dev/null 2>&1
  {
    printf '%s\n' 'REGEDIT4' '' '[HKEY_CURRENT_USER\Software\Wine\WineDbg]' '"ShowCrashDialog"=dword:0' \
      '[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]' '"Debugger"=""'
    [ "${2:-}" = desktop ] && printf '%s\n' '[HKEY_CURRENT_USER\Software\Wine\Explorer]' '"Desktop"="Default"' \
      '[HKEY_CURRENT_USER\Software\Wine\Explorer\Desktops]' '"Default"="1280x800"'
  } > "$WINEPREFIX/settings.reg"
  env -u DISPLAY wine regedit /S "$WINEPREFIX/settings.reg"
  wineserver -k; wineserver -w; wineserver -p || true
  touch "$WINEPREFIX/dravel-ready"
}

# stop_wine: only this prefix's server and the Xvfb that start_xvfb started.
stop_wine() {
  [ -n "${WINEPREFIX:-}" ] && wineserver -k 2>/dev/null
  [ -n "${XVFB_PID:-}" ] && kill "$XVFB_PID" 2>/dev/null
  return 0
}
