// Speed of every form of the zoom-in functions: a 1920-pixel line doubled to 3840 pixels, and a
// 1920x1080 picture doubled to 3840x2160. Items are output pixels; the memcpy row beside each
// group writes the same output bytes.
//
// Names: BM_zoom_in2x1d/<form>/1920, BM_zoom_in2x2d/<form>/1920x1080.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "catalog.h"
#include "scale/linzoom.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::size_t kOutPixels = std::size_t{4} * kWidth * kHeight;

struct FreeDeleter {
  void operator()(void* p) const { std::free(p); }
};
using Pixels = std::unique_ptr<std::uint32_t[], FreeDeleter>;

// 64-byte aligned (the functions require 16), every page touched before timing.
Pixels pixels(std::size_t n) {
  Pixels p(static_cast<std::uint32_t*>(std::aligned_alloc(64, (4 * n + 63) / 64 * 64)));
  std::memset(p.get(), 0, 4 * n);
  return p;
}

struct Buffers {
  Pixels src = pixels(kOutPixels), dst = pixels(kOutPixels);
  Buffers() {
    qx::harness::Rng rng(2026);
    qx::harness::random_pixels({src.get(), kOutPixels}, rng);
  }
};

Buffers& buffers() {
  static Buffers b;
  return b;
}

void line(benchmark::State& state, qx::ZoomIn1dFn* fn) {
  Buffers& b = buffers();
  for (auto _ : state) {
    fn(b.dst.get(), b.src.get(), kWidth);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * 2 * kWidth);
  state.SetBytesProcessed(state.iterations() * 8 * kWidth);
}

void picture(benchmark::State& state, qx::ZoomIn2dFn* fn) {
  Buffers& b = buffers();
  for (auto _ : state) {
    fn(b.dst.get(), b.src.get(), kWidth, kHeight, kWidth);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kOutPixels);
  state.SetBytesProcessed(state.iterations() * 4 * kOutPixels);
}

void copy(benchmark::State& state, std::size_t pixels) {
  Buffers& b = buffers();
  for (auto _ : state) {
    std::memcpy(b.dst.get(), b.src.get(), 4 * pixels);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * pixels);
  state.SetBytesProcessed(state.iterations() * 4 * pixels);
}

template <class Fn, std::size_t N>
void register_group(const std::string& group, const std::string& size,
                    const qx::Form<Fn> (&forms)[N], void (*run)(benchmark::State&, Fn*),
                    std::size_t out_pixels) {
  benchmark::RegisterBenchmark((group + "/memcpy/" + size).c_str(), copy, out_pixels);
  for (const qx::Form<Fn>& f : forms)
    if (qx::cpu_supports(f.isa))
      benchmark::RegisterBenchmark((group + "/" + qx::isa_name(f.isa) + "/" + size).c_str(), run,
                                   f.fn);
}

const bool registered = [] {
  register_group("BM_zoom_in2x1d", "1920", qx::zoom_in2x1d_forms, line, 2 * kWidth);
  register_group("BM_zoom_in2x2d", "1920x1080", qx::zoom_in2x2d_forms, picture, kOutPixels);
  return true;
}();

}  // namespace
