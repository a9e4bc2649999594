#!/usr/bin/env bash
# Installs the build and test tools when they are missing (Debian packages only).
# Extra package names may be given as arguments.
set -euo pipefail
need=()
for pkg in cmake g++ make binutils libgtest-dev libbenchmark-dev "$@"; do
  dpkg -s "$pkg" >/dev/null 2>&1 || need+=("$pkg")
done
if [ ${#need[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${need[@]}"
fi
