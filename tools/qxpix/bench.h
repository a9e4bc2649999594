// The benchmark summary: every export that does work, timed through the public interface on a
// 1920-pixel line (the zoom and scaling exports on pictures), beside a memcpy of the same output
// bytes, the speed of light for that job.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qxpix {

struct BenchRow {
  std::string kernel;  // the export's name
  std::string form;    // the form the library runs here (see tiers.h)
  std::string job;     // what one call does, e.g. "1920 px line"
  double gpx;          // output pixels per nanosecond (10^9 pixels per second)
  double
      time_memcpy;  // the kernel's time / memcpy's time for the same output bytes (lower: faster)
};

// `millis` is the time spent measuring each row (five batches of the kernel and five of memcpy,
// taken in turn, the medians kept). `progress` is
// called before each row with its index and the row count.
std::vector<BenchRow> run_bench(double millis,
                                const std::function<void(int, int, const std::string&)>& progress);
std::string bench_table(const std::vector<BenchRow>& rows);
// A bar chart of the rows drawn by gnuplot into a PNG.
void plot_bench(const std::string& path, const std::vector<BenchRow>& rows);

}  // namespace qxpix
