#!/usr/bin/env bash
# Builds the release library and qxpix, writes qxpix's demo into build/demo (its contact sheet is
# build/demo/index.png), then runs the benchmark summary (medians of 3 repetitions).
# Extra arguments go to the benchmark, e.g. --benchmark_filter=blend
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DQX_BUILD_TESTS=OFF
cmake --build build/release -j "$(nproc)"
build/release/tools/qxpix/qxpix demo build/demo
exec build/release/bench/qxpixlib_bench --benchmark_min_time=0.05 --benchmark_repetitions=3 \
  --benchmark_report_aggregates_only=true --benchmark_counters_tabular=true "$@"
