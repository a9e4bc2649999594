#!/usr/bin/env bash
# Builds the Debian packages (libqxpixlib1, libqxpixlib-dev, qxpix) with CPack, installs them with
# dpkg -i, builds a consumer against them (CMake find_package and pkg-config), then removes them.
# Usage: scripts/package.sh [build-dir]   (an existing build is packaged as it is; a new one is
# configured as a release build for /usr)
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh dpkg-dev file
dir=${1:-build/package}
if [ ! -f "$dir/CMakeCache.txt" ]; then
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DQX_BUILD_TESTS=OFF -DQX_BUILD_BENCH=OFF
fi
cmake --build "$dir" -j "$(nproc)"
rm -f "$dir"/*.deb
if ! out=$(cd "$dir" && cpack -G DEB 2>&1); then
  echo "$out" >&2
  exit 1
fi
debs=("$dir"/libqxpixlib1_*.deb "$dir"/libqxpixlib-dev_*.deb "$dir"/qxpix_*.deb)
ls -l "${debs[@]}"

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
# dpkg, waiting while another package run holds the lock.
dpkg_waiting() {
  for _ in $(seq 120); do
    if out=$($sudo dpkg "$@" 2>&1); then return 0; fi
    case $out in *lock*) sleep 5 ;; *) echo "$out" >&2; return 1 ;; esac
  done
  echo "$out" >&2
  return 1
}
work=$(mktemp -d)
cleanup() {
  dpkg_waiting -P qxpix libqxpixlib-dev libqxpixlib1 || true
  rm -rf "$work"
}
trap cleanup EXIT
dpkg_waiting -i "${debs[@]}"

version=$(pkg-config --modversion qxpixlib)
echo "installed: pkg-config --modversion qxpixlib = $version"
cmake -S tests/consumer -B "$work/cmake" -DQX_WANT=1.0 >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/consumer"
# shellcheck disable=SC2046
cc -o "$work/pc-consumer" tests/consumer/consumer.c $(pkg-config --cflags --libs qxpixlib) \
  -DEXPECTED_VERSION="\"$version\""
"$work/pc-consumer"
if cmake -S tests/consumer -B "$work/too-new" -DQX_WANT=2.0 >/dev/null 2>&1; then
  echo "find_package(qxpixlib 2.0) accepted version $version" >&2
  exit 1
fi
qxpix --version
qxpix -q demo "$work/demo" >/dev/null
echo "packages serve a consumer: find_package, pkg-config, the qxpix demo"
