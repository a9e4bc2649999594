#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer and UndefinedBehaviorSanitizer: the `fuzz`
# preset) and runs each for a while, starting from the committed seeds in fuzz/corpus/.
# Usage: scripts/fuzz.sh [seconds per target, default 60] [target...]
#   targets: blend convert alpha scale (default: all, one after another)
#   QX_FUZZ_BUILD   build directory (default build/fuzz); an existing one is reused as configured
#   QX_FUZZ_FLAGS   more libFuzzer flags, e.g. "-fork=2" to use two cores
# The corpus grows in <build>/corpus/<target>; a failing input is written to <build>/crashes/ and
# the script stops with its error. A long campaign: scripts/fuzz.sh 600
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(blend convert alpha scale)
build=${QX_FUZZ_BUILD:-build/fuzz}

bash scripts/deps.sh clang libclang-rt-14-dev
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake --preset fuzz -B "$build" >/dev/null
fi
cmake --build "$build" -j "$(nproc)" --target "${targets[@]/#/qx_fuzz_}"

mkdir -p "$build/crashes"
for t in "${targets[@]}"; do
  mkdir -p "$build/corpus/$t"
  log="$build/fuzz-$t.log"
  # shellcheck disable=SC2086  # QX_FUZZ_FLAGS is a list of flags
  if ! "$build/fuzz/qx_fuzz_$t" -max_total_time="$seconds" -print_final_stats=1 \
      -artifact_prefix="$build/crashes/$t-" ${QX_FUZZ_FLAGS:-} \
      "$build/corpus/$t" "fuzz/corpus/$t" >"$log" 2>&1; then
    tail -n 40 "$log"
    echo "fuzz: $t failed; the input is in $build/crashes/" >&2
    exit 1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -n 1)
  if [ -z "$runs" ]; then  # -fork prints no final stats: take its last progress line
    last=$(sed -nE 's/^#([0-9]+):? .*exec\/s:? ([0-9]+).*/\1 \2/p' "$log" | tail -n 1)
    runs=${last% *} rate=${last#* }
  fi
  cov=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1)
  echo "fuzz: $t ${seconds}s, ${runs:-?} runs, ${rate:-?} exec/s, ${cov:-cov: ?}"
done
