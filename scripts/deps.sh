#!/usr/bin/env bash
# Installs the build and test tools when they are missing (Debian packages only).
# Extra package names may be given as arguments.
set -euo pipefail
need=()
# (qxpix: libspng-dev, libcli11-dev, pkg-config; its bench --plot: gnuplot-nox)
for pkg in cmake g++ make binutils libgtest-dev libbenchmark-dev libspng-dev libcli11-dev pkg-config \
  gnuplot-nox "$@"; do
  dpkg -s "$pkg" >/dev/null 2>&1 || need+=("$pkg")
done
if [ ${#need[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  # (another apt run may hold the package lock for a while: wait for it rather than fail; an index
  # that cannot be fetched, such as a foreign architecture's mid-sync, leaves the others usable)
  $sudo apt-get -o DPkg::Lock::Timeout=600 update -qq ||
    echo "deps.sh: some package indexes could not be fetched; installing from the others" >&2
  DEBIAN_FRONTEND=noninteractive $sudo apt-get -o DPkg::Lock::Timeout=600 install -y -qq \
    --no-install-recommends "${need[@]}"
fi
