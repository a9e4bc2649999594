#!/usr/bin/env bash
# Builds the library and its tests (warnings as errors) and runs the whole suite.
# Usage: scripts/test.sh [build-dir] [extra cmake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
dir=${1:-build/test}
shift || true
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQX_WERROR=ON -DQX_BUILD_BENCH=OFF "$@"
cmake --build "$dir" -j "$(nproc)"
ctest --test-dir "$dir" --output-on-failure -j "$(nproc)"
