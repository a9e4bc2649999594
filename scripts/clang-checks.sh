#!/usr/bin/env bash
# CI's clang stages: the whole suite (every tier included, the static library) under
# AddressSanitizer and UndefinedBehaviorSanitizer, a brief run of each fuzz target, and the threads test under
# ThreadSanitizer.
# Usage: scripts/clang-checks.sh [fuzz seconds per target, default 8]
set -euo pipefail
cd "$(dirname "$0")/.."
fuzz_seconds=${1:-8}
bash scripts/deps.sh clang libclang-rt-14-dev

CC=clang CXX=clang++ bash scripts/test.sh build/ci-clang -DQX_SANITIZE=address,undefined \
  -DQX_SHARED=OFF
QX_FUZZ_BUILD=build/ci-fuzz bash scripts/fuzz.sh "$fuzz_seconds"

cmake --preset tsan -B build/ci-tsan >/dev/null
cmake --build build/ci-tsan -j "$(nproc)" --target qxpixlib_tests
ctest --test-dir build/ci-tsan --output-on-failure -R '^Threads\.'
