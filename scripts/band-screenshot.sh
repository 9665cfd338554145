#!/usr/bin/env bash
# Photographs the Internet Explorer band as Wine draws it: the Windows
# build's band_screenshot.exe under Xvfb with Wine's X11 graphics driver, sited
# in a scripted browser after a navigation to URL, with the information strip
# showing the reference server's answer (risk bar, country, text).
#   scripts/band-screenshot.sh [OUTPUT.png] [URL]
# Default output docs/band.png, default URL http://8.8.8.8/ (a public address,
# so the server names its country). Needs the default and windows builds.
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:-docs/band.png}
url=${2:-http://8.8.8.8/}
for p in xvfb imagemagick; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' ||
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends xvfb imagemagick
done
cmake --build --preset windows --target band_screenshot >/dev/null

# A prefix of its own: the tests' prefix uses the null driver, which draws
# nothing on a screen.
export WINEPREFIX="$PWD/build/windows/wineprefix-x11" WINEDEBUG=-all
wine=/usr/lib/wine/wine64
if [ ! -f "$WINEPREFIX/.tarnwick-ready" ]; then
  rm -rf "$WINEPREFIX"
  "$wine" wineboot --init >/dev/null 2>&1
  "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null 2>&1
  /usr/lib/wine/wineserver -w
  touch "$WINEPREFIX/.tarnwick-ready"
fi

. scripts/reference-server.sh
scratch=$(mktemp -d)
start_reference_server build/default "$scratch" data/feeds/tarnwick-lines.txt
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1024x600x24 -nolisten tcp >"$scratch/xvfb.log" 2>&1 &
xvfb=$!
trap 'kill "$xvfb" 2>/dev/null; /usr/lib/wine/wineserver -k 2>/dev/null; kill "$reference_server_pid" 2>/dev/null; rm -rf "$scratch"' EXIT
# A program folder with the components and the bundled data files.
program="$scratch/program"
mkdir -p "$program"
cp build/windows/lib/tarnwick/{pagefetch.dll,tarnwickrex.dll,updater.exe} "$program/"
cp data/{localblock.dat,xss.dat,tarnwick.xml,menu.xml,logo.bmp} "$program/"
export DISPLAY=$display TARNWICK_SERVER=$reference_server TARNWICK_SITE=$reference_server TARNWICK_PROGRAM_DIR="Z:$program"
"$wine" regsvr32 /s build/windows/lib/tarnwick/twtb.dll >/dev/null 2>&1
ready="$scratch/ready"
"$wine" build/windows/bin/band_screenshot.exe "$url" "Z:$ready" 15 >"$scratch/band.log" 2>&1 &
for _ in $(seq 300); do
  [ -f "$ready" ] && break
  sleep 0.1
done
[ -f "$ready" ] || { echo "band-screenshot.sh: the band did not show (see $scratch/band.log)" >&2; cat "$scratch/band.log" >&2; exit 1; }
mkdir -p "$(dirname "$out")"
import -window root -crop 820x46+0+0 "$out"
echo "$out"
