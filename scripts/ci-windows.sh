#!/usr/bin/env bash
# CI stage for Windows: cross-builds the 32-bit and the 64-bit qxpixlib.dll with MinGW-w64 (the
# mingw-i686 and mingw-x86_64 presets), checks each DLL's export and import tables, and runs the
# whole suite and the host program under wine: 64-bit wine always, 32-bit wine when it can be had.
# (Each runs as one wine process: `ctest --preset mingw-<arch>` starts wine once per test, which
# takes several times longer.)
#
# 32-bit wine (Debian's wine32) needs the i386 architecture, and installing it fails on days when
# the archive's i386 packages lag the installed 64-bit ones (multiarch libraries must match). Then
# the same wine32 package is unpacked into the build folder and run from there (its loader needs
# only the 32-bit C library). When even that fails, the 32-bit suite is skipped, saying so, and the
# stage passes on the i686 DLL's table checks.
set -euo pipefail
cd "$(dirname "$0")/.."
start=$SECONDS
say() { echo "== windows ($((SECONDS - start)) s): $*"; }

bash scripts/deps.sh g++-mingw-w64-i686 g++-mingw-w64-x86-64 googletest libc6-i386 \
  libz-mingw-w64 wine wine64
say "packages ready"

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
apt=(apt-get -o DPkg::Lock::Timeout=600 -qq)
wine_dir=$PWD/build/wine
rm -rf "$wine_dir"
mkdir -p "$wine_dir"
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
env64=(WINEPREFIX="$wine_dir/win64")

# Finds a 32-bit wine loader; writes its path and environment to $wine_dir/wine32.env.
find_wine32() {
  if [ -x /usr/lib/wine/wine ]; then
    echo "wine32=/usr/lib/wine/wine" >"$wine_dir/wine32.env"
    return
  fi
  local added_i386=""
  if ! dpkg --print-foreign-architectures | grep -qx i386; then
    $sudo dpkg --add-architecture i386
    added_i386=1
  fi
  $sudo "${apt[@]}" update >"$wine_dir/update.log" 2>&1 || true
  if DEBIAN_FRONTEND=noninteractive $sudo "${apt[@]}" install -y --no-install-recommends \
    wine32:i386 >"$wine_dir/install.log" 2>&1; then
    echo "wine32=/usr/lib/wine/wine" >"$wine_dir/wine32.env"
    say "wine32 installed from the package archive"
  else
    say "wine32 is NOT installable from the package archive today:"
    grep -h -m2 -E '^E:|:i386 : Depends' "$wine_dir/update.log" "$wine_dir/install.log" |
      sed 's/^/    /' || true
    # The same package, unpacked: its loader and Wine's own libraries, no multiarch dependencies.
    local root=$wine_dir/wine32
    if (cd "$wine_dir" && "${apt[@]}" download wine32:i386 libwine:i386) \
      >"$wine_dir/download.log" 2>&1; then
      for deb in "$wine_dir"/*.deb; do dpkg-deb -x "$deb" "$root"; done
      if [ -x "$root/usr/lib/wine/wine" ]; then
        # (zlib1.dll, which the installed package takes from the MinGW-w64 zlib package)
        cp /usr/i686-w64-mingw32/lib/zlib1.dll "$root/usr/lib/i386-linux-gnu/wine/i386-windows/"
        printf 'wine32=%s\nWINESERVER=%s\n' "$root/usr/lib/wine/wine" \
          "$root/usr/lib/wine/wineserver32" >"$wine_dir/wine32.env"
        say "using Debian's wine32 unpacked into build/wine/wine32 instead"
      fi
    fi
  fi
  if [ -n "$added_i386" ] && ! dpkg-query -W -f '${Architecture}\n' | grep -qx i386; then
    # Nothing of i386 stayed installed: leave the package configuration as it was.
    $sudo dpkg --remove-architecture i386
    $sudo "${apt[@]}" update || true
  fi
}

# The DLL must export exactly the functions the public header declares, on one entry point fewer
# (qx_r210argb is qx_pixinit), and import only from KERNEL32.dll and msvcrt.dll.
want=$(grep -oE 'QX_API void QX_CALL qx_[a-zA-Z0-9_]+' include/qxpixlib.h | awk '{print $4}' | sort)
check_tables() {  # <objdump> <dll>
  local table names entries imports ok=1
  table=$("$1" -p "$2")
  echo "$table" | grep 'DLL Name:'
  echo "$table" | sed -n '/^Export Address Table --/,/^$/p;/^\[Ordinal\/Name Pointer\] Table/,/^$/p'
  names=$(echo "$table" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/p' |
    awk '/^\t\[ *[0-9]+\]/ {print $NF}' | sort)
  entries=$(echo "$table" | awk '/Export RVA/ {print $(NF - 2)}' | sort -u | wc -l)
  imports=$(echo "$table" | awk '/DLL Name:/ {print toupper($3)}' | sort | tr '\n' ' ')
  [ "$names" = "$want" ] || { say "$2: the exported names differ from the header's"; ok=""; }
  [ "$entries" -eq $(($(echo "$want" | wc -l) - 1)) ] || { say "$2: $entries entry points"; ok=""; }
  [ "$imports" = "KERNEL32.DLL MSVCRT.DLL " ] || { say "$2: imports $imports"; ok=""; }
  [ -n "$ok" ] || return 1
  say "$2: $(echo "$names" | wc -l) names on $entries entry points, imports $imports"
}

build() {  # <arch> [cmake arguments]
  cmake --preset "mingw-$1" "${@:2}" >/dev/null
  cmake --build --preset "mingw-$1" -j "$(nproc)"
  say "built $1"
  check_tables "$1-w64-mingw32-objdump" "build/mingw-$1/bin/qxpixlib.dll"
}

run_suite() {  # <arch> <wine loader> [environment]: the whole suite, then the host programs
  local bin=build/mingw-$1/bin
  env "${@:3}" "$2" "$bin/qxpixlib_tests.exe" --gtest_brief=1
  env "${@:3}" "$2" "$bin/qxpixlib_host.exe"
  env "${@:3}" "$2" "$bin/qxpixlib_linked.exe"
  say "$1: suite and host programs passed under wine"
}

# Wine's first start (creating a prefix) and the search for 32-bit wine run while x86_64 builds.
env "${env64[@]}" wineboot -i >"$wine_dir/boot64.log" 2>&1 &
boot64=$!
find_wine32 &
finding=$!
build x86_64
wait $finding || true

wine32=""
env32=(WINEPREFIX="$wine_dir/win32" WINEARCH=win32)
if [ -f "$wine_dir/wine32.env" ]; then
  wine32=$(sed -n 's/^wine32=//p' "$wine_dir/wine32.env")
  if server=$(grep '^WINESERVER=' "$wine_dir/wine32.env"); then env32+=("$server"); fi
  env "${env32[@]}" "$wine32" wineboot -i >"$wine_dir/boot32.log" 2>&1 &
  boot32=$!
  build i686 -DCMAKE_CROSSCOMPILING_EMULATOR="$wine32"
  wait $boot32 || true  # (its status reports the missing display, not whether the prefix was made)
  if [ ! -f "$wine_dir/win32/system.reg" ]; then
    say "32-bit wine failed to start (build/wine/boot32.log):"
    tail -3 "$wine_dir/boot32.log" | sed 's/^/    /'
    wine32=""
  fi
else
  build i686
fi

wait $boot64 || true
run_suite x86_64 wine "${env64[@]}"
if [ -n "$wine32" ]; then
  run_suite i686 "$wine32" "${env32[@]}"
else
  say "NO 32-bit wine today: the i686 suite did NOT run (the i686 DLL's tables were checked)"
fi
env "${env64[@]}" wineserver -k 2>/dev/null || true
[ -z "$wine32" ] || env "${env32[@]}" wineserver -k 2>/dev/null || true
say "stage done"
