#!/usr/bin/env bash
# Makes a fresh Wine prefix for the Windows tests: no crash dialog (a crash
# would otherwise hang in the debugger) and the null graphics driver (windows
# and controls without an X server).
set -euo pipefail
prefix=$(realpath -m "$1")
export WINEPREFIX="$prefix" WINEDEBUG=-all
wine=/usr/lib/wine/wine64
if [ ! -f "$prefix/.tarnwick-ready" ]; then
  rm -rf "$prefix"
  mkdir -p "$prefix"
  log="$prefix/../wine-prefix.log"
  "$wine" wineboot --init >"$log" 2>&1
  /usr/lib/wine/wineserver -w
  "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >>"$log" 2>&1
  "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >>"$log" 2>&1
  # Let the server exit by itself: it writes the registry as it goes, and a
  # killed one can lose the values just added.
  /usr/lib/wine/wineserver -w
  "$wine" reg query 'HKCU\Software\Wine\Drivers' /v Graphics >>"$log" 2>&1 ||
    { echo "wine-prefix.sh: the null graphics driver was not set (see $log)" >&2; exit 1; }
  /usr/lib/wine/wineserver -w
  touch "$prefix/.tarnwick-ready"
fi
