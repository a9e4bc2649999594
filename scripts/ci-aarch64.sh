#!/usr/bin/env bash
# CI stage for 64-bit ARM: cross-builds the library and its suite for AArch64 (the aarch64 preset:
# Debian's g++-aarch64-linux-gnu, GoogleTest built from Debian's sources) and runs the suite under
# qemu-user with plain ctest: every NEON form against the scalar form, the export list, the host
# programs and the tier runs (scalar, neon).
set -euo pipefail
cd "$(dirname "$0")/.."
start=$SECONDS
say() { echo "== aarch64 ($((SECONDS - start)) s): $*"; }

bash scripts/deps.sh g++-aarch64-linux-gnu qemu-user googletest
say "packages ready"
cmake --preset aarch64 >/dev/null
cmake --build --preset aarch64 -j "$(nproc)"
say built
ctest --preset aarch64 -j "$(nproc)"
say "stage done"
