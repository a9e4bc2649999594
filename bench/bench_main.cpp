// Speed of every form of every kernel, beside memcpy and the peer libraries found at build time,
// on a 1920-pixel line and on a 1920x1080 frame; ends with one summary table per mode.
//
// Usage: qxpixlib_bench [--raw] [Google Benchmark flags]
//   --raw  print every benchmark's row as well (the summary still follows)
// Defaults: medians of 7 repetitions of at least 20 ms each; flags given override them, e.g.
// --benchmark_filter=blend or --benchmark_repetitions=9.
#include <benchmark/benchmark.h>

#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "bench.h"
#include "summary.h"

int main(int argc, char** argv) {
  // Repetitions run in random order across all benchmarks, so that a burst of load from another
  // process spreads over many medians instead of spoiling every repetition of one benchmark.
  std::vector<std::string> args{argv[0], "--benchmark_repetitions=7", "--benchmark_min_time=0.02",
                                "--benchmark_enable_random_interleaving=true",
                                "--benchmark_display_aggregates_only=true"};
  bool raw = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--raw") == 0)
      raw = true;
    else
      args.emplace_back(argv[i]);  // later flags override the defaults above
  }
  std::vector<char*> argp;
  for (std::string& a : args) argp.push_back(a.data());
  int n = static_cast<int>(argp.size());

  qxbench::add_line_kernels();
  qxbench::add_picture_kernels();
  qxbench::register_benchmarks();
  benchmark::Initialize(&n, argp.data());
  if (benchmark::ReportUnrecognizedArguments(n, argp.data())) return 1;
  qxbench::Collector collector(raw);
  benchmark::RunSpecifiedBenchmarks(&collector);
  benchmark::Shutdown();
  qxbench::print_summary(std::cout, collector.seconds());
  return 0;
}
