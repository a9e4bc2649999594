#!/usr/bin/env bash
# Builds the release library, qxpix and the benchmark, with the peer libraries it compares against
# (libyuv, pixman, FFmpeg's libavcodec); writes qxpix's demo into build/demo (its contact sheet is
# build/demo/index.png), then prints the benchmark summary: one table per mode. Takes a minute or
# two. Extra arguments go to the benchmark, e.g. --raw (every row as well),
# --benchmark_filter=blend, --benchmark_repetitions=15.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh pkg-config libyuv-dev libpixman-1-dev libavcodec-dev
# QX_BENCH_BUILD names a build that is already configured with the benchmark (CI reuses its own).
build=${QX_BENCH_BUILD:-build/release}
if [ -z "${QX_BENCH_BUILD:-}" ]; then
  cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DQX_BUILD_TESTS=OFF
fi
cmake --build "$build" -j "$(nproc)"
"$build"/tools/qxpix/qxpix demo build/demo
# One core for the whole run (the last one this process may use), when taskset is there.
pin=()
if command -v taskset >/dev/null; then
  pin=(taskset -c "$(taskset -pc $$ | sed 's/.*[:,-] *//')")
fi
exec "${pin[@]}" "$build"/bench/qxpixlib_bench "$@"
