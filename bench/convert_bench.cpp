// v210 unpacking, every form, on a 1920-pixel line and a 1920x1080 frame (line by line), in
// pixels per second, beside a memcpy row of the same output bytes (4 bytes per pixel).
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "catalog.h"
#include "convert/convert.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::size_t kSrcWords = kWidth / 6 * 4;  // v210 words per line
constexpr std::size_t kDstSamples = 2 * kWidth;    // 16-bit samples per line, three planes

struct V210Buffers {
  std::vector<std::uint32_t> src = std::vector<std::uint32_t>(kSrcWords * kHeight);
  std::vector<std::uint16_t> dst = std::vector<std::uint16_t>(kDstSamples * kHeight);
  V210Buffers() {
    qx::harness::Rng rng(210);
    for (auto& w : src) w = rng();
  }
};

V210Buffers& buffers() {
  static V210Buffers b;
  return b;
}

void v210(benchmark::State& state, qx::V210Fn* fn, int rows) {
  V210Buffers& b = buffers();
  for (auto _ : state) {
    for (int y = 0; y < rows; ++y)
      fn(b.dst.data() + kDstSamples * y, b.src.data() + kSrcWords * y, kWidth);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kWidth * rows);
  state.SetBytesProcessed(state.iterations() * kWidth * rows * 4);
}

void v210_memcpy(benchmark::State& state, int rows) {
  V210Buffers& b = buffers();
  std::vector<std::uint16_t> from(b.dst.size());
  for (auto _ : state) {
    for (int y = 0; y < rows; ++y)
      std::memcpy(b.dst.data() + kDstSamples * y, from.data() + kDstSamples * y, 2 * kDstSamples);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kWidth * rows);
  state.SetBytesProcessed(state.iterations() * kWidth * rows * 4);
}

const bool registered = [] {
  const std::pair<const char*, int> sizes[] = {{"1920", 1}, {"1920x1080", kHeight}};
  for (const auto& [size, rows] : sizes) {
    benchmark::RegisterBenchmark((std::string("BM_v210yuv422p10/memcpy/") + size).c_str(),
                                 v210_memcpy, rows);
    for (const auto& f : qx::v210yuv422p10_forms) {
      if (!qx::cpu_supports(f.isa)) continue;
      benchmark::RegisterBenchmark(
          (std::string("BM_v210yuv422p10/") + qx::isa_name(f.isa) + "/" + size).c_str(), v210, f.fn,
          rows);
    }
  }
  return true;
}();

}  // namespace
