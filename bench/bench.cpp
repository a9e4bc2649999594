#include "bench.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <tuple>

#include "catalog.h"

namespace qxbench {
namespace {

constexpr std::size_t kBig = std::size_t{4} * kWidth * kHeight;  // pixels of a doubled picture
constexpr std::size_t kFrame = std::size_t{kWidth} * kHeight;

// Never freed: the buffers live as long as the process.
template <class T>
T* allocate(std::size_t n) {
  void* p = std::aligned_alloc(64, (sizeof(T) * n + 64 + 63) / 64 * 64);
  if (!p) throw std::bad_alloc();
  return reinterpret_cast<T*>(static_cast<std::uint8_t*>(p) + 16);
}

std::vector<Entry>& all_entries() {
  static std::vector<Entry> e;
  return e;
}

void measure(benchmark::State& state, const Entry* e) {
  for (auto _ : state) {
    e->run();
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(
      static_cast<std::int64_t>(static_cast<double>(state.iterations()) * e->pixels));
}

// dst = a ^ b: the cheapest job on three streams, built for the widest vectors this processor has.
#if defined(__clang__)
#define QX_VECTORIZED target_clones("avx512f", "avx2", "default")
#else
#define QX_VECTORIZED target_clones("avx512f", "avx2", "default"), optimize("tree-vectorize")
#endif
__attribute__((QX_VECTORIZED)) void xor_lines(std::uint32_t* __restrict dst,
                                              const std::uint32_t* __restrict a,
                                              const std::uint32_t* __restrict b, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) dst[i] = a[i] ^ b[i];
}

}  // namespace

const Buffers& buffers() {
  static const Buffers b = [] {
    const Buffers x{allocate<std::uint32_t>(kBig), allocate<std::uint32_t>(kFrame),
                    allocate<std::uint32_t>(kBig), allocate<std::uint8_t>(kFrame),
                    allocate<std::uint8_t>(256),   allocate<std::uint8_t>(3 * kFrame)};
    // Every page is written before timing, so that no read maps the shared zero page.
    qx::harness::Rng rng(2026);
    qx::harness::random_pixels({x.a, kBig}, rng);
    qx::harness::random_pixels({x.b, kFrame}, rng);
    std::memset(x.dst, 0, 4 * kBig);
    qx::harness::random_bytes({x.mask, kFrame}, rng);
    qx::harness::random_bytes({x.lut, 256}, rng);
    qx::harness::random_bytes({x.plane, 3 * kFrame}, rng);
    return x;
  }();
  return b;
}

void add(Entry entry) { all_entries().push_back(std::move(entry)); }

const std::vector<Entry>& entries() { return all_entries(); }

void add_memcpy(const Row& row, std::size_t bytes_per_row, int rows) {
  if (rows == 0) rows = rows_of(row.mode);
  add(make_entry(row, Role::kMemcpy, "memcpy", [bytes_per_row, rows] {
    const Buffers& b = buffers();
    auto* dst = reinterpret_cast<std::uint8_t*>(b.dst);
    const auto* src = reinterpret_cast<const std::uint8_t*>(b.a);
    for (int y = 0; y < rows; ++y)
      std::memcpy(dst + bytes_per_row * y, src + bytes_per_row * y, bytes_per_row);
  }));
}

void add_stream(const Row& row) {
  const int rows = rows_of(row.mode);
  add(make_entry(row, Role::kStream, "stream", [rows] {
    const Buffers& b = buffers();
    for (int y = 0; y < rows; ++y) {
      const std::size_t at = std::size_t{kWidth} * y;
      xor_lines(b.dst + at, b.a + at, b.b + at, kWidth);
    }
  }));
}

void add_peer(std::string kernel, std::string variant, Mode mode, std::string label,
              std::string note, std::function<void()> run) {
  // (size and pixels are the row's, filled in by register_benchmarks)
  Entry e = make_entry({std::move(kernel), std::move(variant), mode, "", 0}, Role::kPeer,
                       std::move(label), std::move(run));
  e.note = std::move(note);
  add(std::move(e));
}

void register_benchmarks() {
  buffers();  // filled now rather than inside the first measurement
  std::vector<Entry>& all = all_entries();
  // Rows in the order our kernels were added; peers join their row.
  std::vector<std::string> rows;
  for (const Entry& e : all)
    if (e.role != Role::kPeer && std::find(rows.begin(), rows.end(), e.row()) == rows.end())
      rows.push_back(e.row());
  for (Entry& e : all) {
    if (e.role != Role::kPeer) continue;
    auto ours = std::find_if(all.begin(), all.end(), [&](const Entry& o) {
      return o.role != Role::kPeer && o.row() == e.row() && o.mode == e.mode;
    });
    if (ours == all.end()) {
      std::cerr << "peer " << e.label << " has no row " << e.row() << "; left out\n";
      e.label.clear();
      continue;
    }
    e.size = ours->size;
    e.pixels = ours->pixels;
  }
  std::erase_if(all, [](const Entry& e) { return e.label.empty(); });
  const auto rank = [&](const Entry& e) {
    return std::tuple(e.mode, std::find(rows.begin(), rows.end(), e.row()) - rows.begin(), e.role);
  };
  std::stable_sort(all.begin(), all.end(),
                   [&](const Entry& x, const Entry& y) { return rank(x) < rank(y); });
  for (const Entry& e : all) benchmark::RegisterBenchmark(e.name().c_str(), measure, &e);
}

}  // namespace qxbench
