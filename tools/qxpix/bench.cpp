#include "bench.h"

#include <qxpixlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <sstream>

#include "ops.h"
#include "picture.h"
#include "tiers.h"

namespace qxpix {
namespace {

constexpr int kLine = 1920;
constexpr int kFrameW = 1920, kFrameH = 1080;

// Keeps the compiler from dropping a store nobody reads.
inline void touch(void* p) {
#if defined(__GNUC__) || defined(__clang__)
  asm volatile("" : : "r"(p) : "memory");
#else
  (void)p;
#endif
}

// Time this thread has run: unlike wall time, it does not count the moments the (shared) machine
// gives to other processes.
double cpu_ns() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return t.tv_sec * 1e9 + t.tv_nsec;
}

// Calls per batch for a batch of `fn` to take about batch_ns.
long batch_calls(const std::function<void()>& fn, double batch_ns) {
  fn();  // warm the caches and the library's choice of form
  for (long n = 1;; n *= 4) {
    const double t0 = cpu_ns();
    for (long i = 0; i < n; ++i) fn();
    const double ns = cpu_ns() - t0;
    if (ns >= batch_ns / 4 || n >= (1L << 30))
      return std::max(1L, static_cast<long>(n * batch_ns / std::max(ns, 1.0)));
  }
}

double median5(std::vector<double> v) {
  std::nth_element(v.begin(), v.begin() + 2, v.end());
  return v[2];
}

// Median processor nanoseconds per call of `a` and of `b`, over five batches of each taken in turn
// (so that both see the same machine), the batches sized to take about millis / 10 each.
std::pair<double, double> time_pair(const std::function<void()>& a, const std::function<void()>& b,
                                    double millis) {
  const double batch_ns = millis * 1e6 / 10;
  const long na = batch_calls(a, batch_ns), nb = batch_calls(b, batch_ns);
  std::vector<double> ta, tb;
  for (int round = 0; round < 5; ++round) {
    double t0 = cpu_ns();
    for (long i = 0; i < na; ++i) a();
    ta.push_back((cpu_ns() - t0) / na);
    t0 = cpu_ns();
    for (long i = 0; i < nb; ++i) b();
    tb.push_back((cpu_ns() - t0) / nb);
  }
  return {median5(ta), median5(tb)};
}

struct Case {
  std::string kernel, job;
  double pixels;          // output pixels per call
  std::size_t out_bytes;  // bytes written per call
  std::function<void()> run;
};

// Inputs sized for the largest job, random with a fixed seed.
struct Data {
  Grid<std::uint32_t> a{kFrameW, kFrameH}, b{kFrameW, kFrameH}, dst{2 * kFrameW, kFrameH};
  Bytes mask{kFrameW, kFrameH};
  std::uint8_t lut[256];
  Data() {
    std::mt19937 rng(2026);
    for (auto* g : {&a, &b})
      for (std::ptrdiff_t i = 0; i < g->stride * g->height; ++i) g->data[i] = rng();
    for (std::ptrdiff_t i = 0; i < mask.stride * mask.height; ++i)
      mask.data[i] = static_cast<std::uint8_t>(rng());
    for (auto& v : lut) v = static_cast<std::uint8_t>(rng());
  }
};

std::vector<Case> cases(Data& d) {
  std::uint32_t* o = d.dst.data.get();
  const std::uint32_t* a = d.a.data.get();
  const std::uint32_t* b = d.b.data.get();
  const std::uint8_t* m = d.mask.data.get();
  const std::uint8_t* lut = d.lut;
  const std::string line = std::to_string(kLine) + " px line";
  const std::size_t line_bytes = 4 * kLine;
  std::vector<Case> c;
  auto add_line = [&](const char* name, std::function<void()> run) {
    c.push_back({name, line, kLine, line_bytes, std::move(run)});
  };
  add_line("qx_fill", [=] { qx_fill(o, 0x80402010u, kLine); });
  add_line("qx_argb2ayuv", [=] { qx_argb2ayuv(o, a, kLine); });
  add_line("qx_ayuv2argb", [=] { qx_ayuv2argb(o, a, kLine); });
  add_line("qx_v210yuv422p10",
           [=] { qx_v210yuv422p10(reinterpret_cast<std::uint16_t*>(o), a, kLine); });
  for (const FamilyExports& f : kFamilies) {
    const std::string n = std::string("qx_") + f.name;
    c.push_back({n, line, kLine, line_bytes, [=] { f.base(o, a, b, kLine); }});
    c.push_back({n + "_t", line, kLine, line_bytes, [=] { f.t(o, a, b, kLine, 200); }});
    c.push_back({n + "_m", line, kLine, line_bytes, [=] { f.m(o, a, b, kLine, m); }});
    c.push_back({n + "_mt", line, kLine, line_bytes, [=] { f.mt(o, a, b, kLine, m, 200); }});
    c.push_back({n + "_mlt", line, kLine, line_bytes, [=] { f.mlt(o, a, b, kLine, m, lut, 200); }});
  }
  add_line("qx_alpha", [=] { qx_alpha(o, a, kLine); });
  add_line("qx_mask", [=] { qx_mask(o, a, m, kLine); });
  add_line("qx_lin_pix", [=] { qx_lin_pix(o, a, b, 100, kLine); });
  c.push_back({"qx_zoom_in2x1d", std::to_string(kLine / 2) + " -> " + line, kLine, line_bytes,
               [=] { qx_zoom_in2x1d(o, a, kLine / 2); }});
  const std::ptrdiff_t sa = d.a.stride;
  const std::size_t frame_bytes = std::size_t{4} * kFrameW * kFrameH;
  c.push_back({"qx_zoom_in2x2d", "960x540 -> 1920x1080", kFrameW * kFrameH, frame_bytes,
               [=] { qx_zoom_in2x2d(o, a, kFrameW / 2, kFrameH / 2, static_cast<int>(sa)); }});
  c.push_back({"qx_scale_1d", "1280 -> " + line, kLine, line_bytes,
               [=] { qx_scale_1d(o, kLine, a, 1280); }});
  const std::ptrdiff_t so = d.dst.stride;
  c.push_back({"qx_scale_horz", "1280x1080 -> 1920x1080", kFrameW * kFrameH, frame_bytes, [=] {
                 qx_scale_horz(o, kFrameW, static_cast<int>(so), a, 1280, kFrameH,
                               static_cast<int>(sa));
               }});
  // a is read as a packed 1920x1080 picture; its buffer is larger than that.
  c.push_back({"qx_zoom_outNx", "1920x1080 -> 960x540", kFrameW * kFrameH / 4.0, frame_bytes / 4,
               [=] { qx_zoom_outNx(o, kFrameW / 2, kFrameH / 2, a, kFrameW, kFrameH); }});
  for (Case& k : c)
    k.run = [run = std::move(k.run), o] {
      run();
      touch(o);
    };
  return c;
}

}  // namespace

std::vector<BenchRow> run_bench(double millis,
                                const std::function<void(int, int, const std::string&)>& progress) {
  Data d;
  const std::vector<Case> all = cases(d);
  std::vector<BenchRow> rows;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Case& k = all[i];
    if (progress) progress(static_cast<int>(i), static_cast<int>(all.size()), k.kernel);
    std::uint32_t* o = d.dst.data.get();
    const std::uint32_t* src = d.b.data.get();
    const std::size_t n = k.out_bytes;
    const auto [ns, memcpy_ns] = time_pair(
        k.run,
        [=] {
          std::memcpy(o, src, n);
          touch(o);
        },
        millis);
    rows.push_back({k.kernel, std::string(tier_name(chosen_tier(k.kernel))), k.job, k.pixels / ns,
                    ns / memcpy_ns});
  }
  return rows;
}

std::string bench_table(const std::vector<BenchRow>& rows) {
  std::ostringstream out;
  char line[160];
  std::snprintf(line, sizeof line, "%-18s %-10s %-24s %8s %11s\n", "kernel", "form", "job", "Gpx/s",
                "time/memcpy");
  out << line;
  for (const BenchRow& r : rows) {
    std::snprintf(line, sizeof line, "%-18s %-10s %-24s %8.2f %11.2f\n", r.kernel.c_str(),
                  r.form.c_str(), r.job.c_str(), r.gpx, r.time_memcpy);
    out << line;
  }
  return out.str();
}

namespace {

bool on_path(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream dirs(path ? path : "");
  std::string dir;
  while (std::getline(dirs, dir, ':'))
    if (!dir.empty() && access((dir + "/" + program).c_str(), X_OK) == 0) return true;
  return false;
}

}  // namespace

void plot_bench(const std::string& path, const std::vector<BenchRow>& rows) {
  if (!on_path("gnuplot"))
    throw Failure(path, "drawing the chart needs gnuplot (Debian package gnuplot-nox)");
  OutputFile out(path);
  out.close_stream();  // gnuplot writes the temporary by name
  std::ostringstream script;
  script << "set terminal pngcairo noenhanced size 1200,700 font ',9'\n"
         << "set output '" << out.temp_path() << "'\n"
         << "set title 'qxpixlib kernels (form chosen on this processor) beside memcpy of the "
            "same output bytes'\n"
         << "set ylabel '10^9 output pixels per second'\n"
         << "set style data histograms\nset style histogram clustered gap 1\n"
         << "set style fill solid 0.8 border -1\nset boxwidth 0.9\nset grid ytics\n"
         << "set xtics rotate by -50 scale 0\nset key above\nset yrange [0:*]\nset rmargin 8\n"
         << "$data << EOD\n";
  for (const BenchRow& r : rows)
    script << '"' << r.kernel.substr(3) << " (" << r.form << ")\" " << r.gpx << ' '
           << r.gpx * r.time_memcpy << '\n';
  script << "EOD\nplot $data using 2:xtic(1) title 'kernel', '' using 3 title 'memcpy'\n";
  FILE* gp = popen("gnuplot", "w");
  if (!gp) throw Failure(path, "cannot run gnuplot");
  const std::string text = script.str();
  std::fwrite(text.data(), 1, text.size(), gp);
  if (pclose(gp) != 0) throw Failure(path, "gnuplot failed to draw the chart");
  out.commit();
}

}  // namespace qxpix
