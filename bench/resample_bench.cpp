// Speed of the line scalers per form of their line kernel, and of the zoom-out, in output pixels
// per second, each beside a memcpy row of the same output bytes.
//
// Names: BM_scale_1d/<form>/<src>to<dst>, BM_scale_horz/<form>/<src>x1080to<dst>x1080,
// BM_zoom_outNx/scalar/1920x1080to960x540, with <form> "memcpy" for the reference rows.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "catalog.h"
#include "qxpixlib.h"
#include "scale/resample.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kMaxOut = 3840;

struct Pictures {
  // src holds the 1920x1080 source and, for the memcpy rows, as many bytes as the largest output.
  std::vector<std::uint32_t> src, dst;
  Pictures() : src(std::size_t{kMaxOut} * kHeight), dst(std::size_t{kMaxOut} * kHeight + 4) {
    qx::harness::Rng rng(2026);
    qx::harness::random_pixels(src, rng);
  }
  std::uint32_t* out() {  // 16-byte aligned, as the scalers' output rows must be
    auto p = reinterpret_cast<std::uintptr_t>(dst.data());
    return dst.data() + ((16 - p % 16) % 16) / 4;
  }
};

Pictures& pictures() {
  static Pictures p;
  return p;
}

void scale_rows(benchmark::State& state, qx::ScaleLineFn* line, int dst_w, int rows) {
  Pictures& p = pictures();
  std::uint32_t* dst = p.out();
  for (auto _ : state) {
    if (rows == 1)
      qx::scale_1d(line, dst, dst_w, p.src.data(), kWidth);
    else
      qx::scale_horz(line, dst, dst_w, dst_w, p.src.data(), kWidth, rows, kWidth);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * dst_w * rows);
  state.SetBytesProcessed(state.iterations() * dst_w * rows * 4);
}

void zoom_out(benchmark::State& state, int dst_w, int dst_h) {
  Pictures& p = pictures();
  for (auto _ : state) {
    qx_zoom_outNx(p.out(), dst_w, dst_h, p.src.data(), kWidth, kHeight);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * dst_w * dst_h);
  state.SetBytesProcessed(state.iterations() * dst_w * dst_h * 4);
}

// The same output bytes copied row by row.
void memcpy_rows(benchmark::State& state, int dst_w, int rows) {
  Pictures& p = pictures();
  const std::size_t bytes = std::size_t{4} * dst_w;
  for (auto _ : state) {
    for (int y = 0; y < rows; ++y)
      std::memcpy(p.out() + static_cast<std::size_t>(dst_w) * y,
                  p.src.data() + static_cast<std::size_t>(dst_w) * y, bytes);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * dst_w * rows);
  state.SetBytesProcessed(state.iterations() * bytes * rows);
}

const bool registered = [] {
  for (int dst_w : {1280, 3840}) {
    const std::string w = std::to_string(dst_w);
    const std::string line = "BM_scale_1d/", size1 = "/1920to" + w;
    const std::string horz = "BM_scale_horz/", size2 = "/1920x1080to" + w + "x1080";
    benchmark::RegisterBenchmark((line + "memcpy" + size1).c_str(), memcpy_rows, dst_w, 1);
    benchmark::RegisterBenchmark((horz + "memcpy" + size2).c_str(), memcpy_rows, dst_w, kHeight);
    for (const auto& f : qx::scale_line_interp_forms) {
      if (!qx::cpu_supports(f.isa)) continue;
      const std::string form = qx::isa_name(f.isa);
      benchmark::RegisterBenchmark((line + form + size1).c_str(), scale_rows, f.fn, dst_w, 1);
      benchmark::RegisterBenchmark((horz + form + size2).c_str(), scale_rows, f.fn, dst_w, kHeight);
    }
  }
  benchmark::RegisterBenchmark("BM_zoom_outNx/memcpy/1920x1080to960x540", memcpy_rows, 960, 540);
  benchmark::RegisterBenchmark("BM_zoom_outNx/scalar/1920x1080to960x540", zoom_out, 960, 540);
  return true;
}();

}  // namespace
