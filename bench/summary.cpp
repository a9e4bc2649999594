#include "summary.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <optional>
#include <vector>

#include "bench.h"

namespace qxbench {
namespace {

// Another form counts as faster than the chosen one only beyond this margin, which is above the
// spread of medians between runs on a quiet machine.
constexpr double kFasterBy = 1.05;

std::string number(double v) {
  char s[32];
  std::snprintf(s, sizeof s, v >= 100 ? "%.0f" : v >= 10 ? "%.1f" : "%.2f", v);
  return s;
}

using Table = std::vector<std::vector<std::string>>;

// A Markdown table with its columns padded, so that it reads in a terminal as well.
void print_table(std::ostream& out, const Table& t) {
  std::vector<std::size_t> width(t[0].size(), 0);
  for (const auto& r : t)
    for (std::size_t c = 0; c < r.size(); ++c) width[c] = std::max(width[c], r[c].size());
  const auto line = [&](const std::vector<std::string>& r) {
    out << '|';
    for (std::size_t c = 0; c < r.size(); ++c)
      out << ' ' << r[c] << std::string(width[c] - r[c].size(), ' ') << " |";
    out << '\n';
  };
  line(t[0]);
  out << '|';
  for (std::size_t w : width) out << std::string(w + 2, '-') << '|';
  out << '\n';
  for (std::size_t i = 1; i < t.size(); ++i) line(t[i]);
}

void print_mode(std::ostream& out, Mode mode, const std::map<std::string, double>& seconds) {
  const auto time = [&](const Entry& e) -> std::optional<double> {
    auto it = seconds.find(e.name());
    if (it == seconds.end()) return std::nullopt;
    return it->second;
  };
  std::vector<std::string> rows;
  for (const Entry& e : entries())
    if (e.mode == mode && time(e) && std::find(rows.begin(), rows.end(), e.row()) == rows.end())
      rows.push_back(e.row());
  if (rows.empty()) return;

  Table t{{"kernel", "form", "Gpx/s", "time/memcpy", "time/stream", "speed-up/scalar",
           "fastest form", "peers: time/memcpy"}};
  std::vector<std::string> notes;
  for (const std::string& row : rows) {
    std::optional<double> memcpy, stream, scalar, chosen, best;
    const Entry* chosen_entry = nullptr;
    const Entry* best_entry = nullptr;
    std::string peers;
    for (const Entry& e : entries()) {
      if (e.mode != mode || e.row() != row || !time(e)) continue;
      const double s = *time(e);
      switch (e.role) {
        case Role::kMemcpy:
          memcpy = s;
          break;
        case Role::kStream:
          stream = s;
          break;
        case Role::kForm:
          if (e.label == "scalar") scalar = s;
          if (e.chosen) chosen = s, chosen_entry = &e;
          if (!best || s < *best) best = s, best_entry = &e;
          break;
        case Role::kPeer: {
          auto n = std::find(notes.begin(), notes.end(), e.label + ": " + e.note);
          if (n == notes.end()) n = notes.insert(n, e.label + ": " + e.note);
          if (!peers.empty()) peers += ", ";
          peers += e.label + " " + (memcpy ? number(s / *memcpy) : "-") + " [" +
                   std::to_string(n - notes.begin() + 1) + "]";
          break;
        }
      }
    }
    std::vector<std::string> r{row, "-", "-", "-", "-", "-", "-", peers};
    if (chosen) {
      r[1] = chosen_entry->label;
      r[2] = number(chosen_entry->pixels / *chosen / 1e9);
      if (memcpy) r[3] = number(*chosen / *memcpy);
      if (stream) r[4] = number(*chosen / *stream);
      if (scalar) r[5] = number(*scalar / *chosen);
      r[6] = *chosen > *best * kFasterBy
                 ? "! " + best_entry->label + " " + number(*chosen / *best) + "x faster"
                 : "yes";
    }
    t.push_back(r);
  }
  out << (mode == Mode::kLine ? "\nLine mode: one 1920-pixel line, cache-resident\n\n"
                              : "\nFrame mode: a 1920x1080 picture, line by line\n\n");
  print_table(out, t);
  if (!notes.empty()) out << '\n';
  for (std::size_t i = 0; i < notes.size(); ++i) out << '[' << i + 1 << "] " << notes[i] << '\n';
}

}  // namespace

Collector::Collector(bool raw)
    : ConsoleReporter(OO_Tabular), raw_(raw), progress_(!raw && isatty(STDERR_FILENO)) {}

bool Collector::ReportContext(const Context& context) {
  if (raw_) return ConsoleReporter::ReportContext(context);
  PrintBasicContext(&GetErrorStream(), context);
  return true;
}

void Collector::ReportRuns(const std::vector<Run>& reports) {
  for (const Run& r : reports) {
    if (r.error_occurred) {
      GetErrorStream() << r.benchmark_name() << ": " << r.error_message << '\n';
      continue;
    }
    const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
    const bool single = r.run_type == Run::RT_Iteration && r.repetitions <= 1;
    if (median || single)
      seconds_[r.run_name.function_name] =
          r.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(r.time_unit);
  }
  if (raw_) ConsoleReporter::ReportRuns(reports);
  if (progress_ && !reports.empty())
    GetErrorStream() << "\r\033[K" << ++done_ << " measured: " << reports[0].run_name.function_name
                     << std::flush;
}

void Collector::Finalize() {
  if (progress_) GetErrorStream() << "\r\033[K" << std::flush;
}

void print_summary(std::ostream& out, const std::map<std::string, double>& seconds) {
  if (seconds.empty()) return;
  print_mode(out, Mode::kLine, seconds);
  print_mode(out, Mode::kFrame, seconds);
  out << "\nform: the form each export runs on this processor. Gpx/s: output pixels per second of "
         "that form.\n"
         "time/memcpy: its median time over that of memcpy writing the same output bytes (lower "
         "is faster);\n"
         "time/stream: over two lines read and one written (kernels that read two lines).\n"
         "speed-up/scalar: the scalar form's time over the chosen form's.\n"
         "fastest form: yes when no other form of the kernel is more than "
      << static_cast<int>((kFasterBy - 1) * 100 + 0.5)
      << "% faster, else the\n"
         "  faster form, flagged !. peers: other libraries on the same sizes, their time over the "
         "same memcpy;\n"
         "  [n] says how their result differs from the kernel's.\n";
}

}  // namespace qxbench
