// Speed of every form of every kernel, on a 1920-pixel line (cache-resident) and on a 1920x1080
// frame processed line by line, in pixels per second. Each group has a memcpy row of the same
// output bytes beside it: the speed of light for that job.
//
// Names: BM_<kernel>/<form>/<pixels>, with <form> "memcpy" for the reference row, and for kernels
// that read two lines "stream3": two lines read and one written with no arithmetic to speak of,
// the speed of light for a blend.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "catalog.h"

namespace {

using qx::harness::LineCall;
using qx::harness::LineForm;
using qx::harness::LineKernel;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

// Frame-sized random inputs, shared by all benchmarks.
struct Buffers {
  std::vector<std::uint32_t> in[2], dst;
  std::vector<std::uint8_t> mask, lut;
  Buffers() {
    qx::harness::Rng rng(2026);
    const std::size_t n = std::size_t{kWidth} * kHeight;
    for (auto& v : in) {
      v.resize(n);
      qx::harness::random_pixels(v, rng);
    }
    dst.resize(n);
    mask.resize(n);
    qx::harness::random_bytes(mask, rng);
    lut.resize(256);
    qx::harness::random_bytes(lut, rng);
  }
};

Buffers& buffers() {
  static Buffers b;
  return b;
}

void line_kernel(benchmark::State& state, const LineForm* form, int rows) {
  Buffers& b = buffers();
  for (auto _ : state) {
    for (int y = 0; y < rows; ++y) {
      const std::size_t at = std::size_t{kWidth} * y;
      form->run(LineCall{b.dst.data() + at,
                         {b.in[0].data() + at, b.in[1].data() + at},
                         b.mask.data() + at,
                         b.lut.data(),
                         200,
                         kWidth});
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kWidth * rows);
  state.SetBytesProcessed(state.iterations() * kWidth * rows * 4);
}

void memcpy_rows(benchmark::State& state, std::size_t bytes_per_row, int rows) {
  Buffers& b = buffers();
  auto* dst = reinterpret_cast<std::uint8_t*>(b.dst.data());
  const auto* src = reinterpret_cast<const std::uint8_t*>(b.in[0].data());
  for (auto _ : state) {
    for (int y = 0; y < rows; ++y)
      std::memcpy(dst + bytes_per_row * y, src + bytes_per_row * y, bytes_per_row);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kWidth * rows);
  state.SetBytesProcessed(state.iterations() * bytes_per_row * rows);
}

// dst = a ^ b: the cheapest job on three streams, built for the widest vectors this processor has.
__attribute__((target_clones("avx512f", "avx2", "default"), optimize("tree-vectorize"))) void
xor_lines(std::uint32_t* __restrict dst, const std::uint32_t* __restrict a,
          const std::uint32_t* __restrict b, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) dst[i] = a[i] ^ b[i];
}

void stream3_rows(benchmark::State& state, int rows) {
  Buffers& b = buffers();
  for (auto _ : state) {
    for (int y = 0; y < rows; ++y) {
      const std::size_t at = std::size_t{kWidth} * y;
      xor_lines(b.dst.data() + at, b.in[0].data() + at, b.in[1].data() + at, kWidth);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kWidth * rows);
  state.SetBytesProcessed(state.iterations() * kWidth * rows * 4);
}

}  // namespace

int main(int argc, char** argv) {
  const std::pair<const char*, int> sizes[] = {{"1920", 1}, {"1920x1080", kHeight}};
  for (const LineKernel& k : qx::harness::line_kernels()) {
    for (const auto& [size, rows] : sizes) {
      const std::string group = "BM_" + k.name + "/";
      benchmark::RegisterBenchmark((group + "memcpy/" + size).c_str(), memcpy_rows,
                                   std::size_t{kWidth} * 4, rows);
      if (k.inputs == 2)
        benchmark::RegisterBenchmark((group + "stream3/" + size).c_str(), stream3_rows, rows);
      for (const LineForm& f : k.forms) {
        if (f.name == "export" || !f.supported()) continue;
        benchmark::RegisterBenchmark((group + f.name + "/" + size).c_str(), line_kernel, &f, rows);
      }
    }
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
