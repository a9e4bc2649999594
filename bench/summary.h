// Collecting the medians of a run and printing them as one table per mode.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>

namespace qxbench {

// Keeps the median CPU time per iteration (seconds) of every benchmark; prints the usual rows too
// when `raw`, otherwise a progress line on a terminal.
class Collector : public benchmark::ConsoleReporter {
 public:
  explicit Collector(bool raw);
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& reports) override;
  void Finalize() override;
  const std::map<std::string, double>& seconds() const { return seconds_; }

 private:
  bool raw_, progress_;
  int done_ = 0;
  std::map<std::string, double> seconds_;
};

// The summary tables of every entry that has a time in `seconds`.
void print_summary(std::ostream& out, const std::map<std::string, double>& seconds);

}  // namespace qxbench
