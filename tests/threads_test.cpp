// Every export called from several threads at once, each thread on its own rows, the threads
// released together so that they race each export's first-use choice of form (and the reading of
// the tier cap); the output must equal a single-threaded run of the same calls. CTest runs each
// test in a process of its own, so these are the first calls of the process. CI runs it under
// ThreadSanitizer.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

#include "catalog.h"
#include "qxpixlib.h"

extern "C" void qx_c_call_stub_as_converter(std::uint32_t* dst, const std::uint32_t* src,
                                            std::int32_t count);

namespace qx::test {
namespace {

constexpr int kThreads = 4;
constexpr int kRows = 16;        // thread t takes rows t, t + kThreads, ...
constexpr std::int32_t kN = 67;  // pixels per line call: whole groups and a tail of three
constexpr std::int32_t kW = 72;  // words between source rows (a multiple of 4: rows stay aligned)
constexpr std::uint32_t kMarker = 0xA5A5A5A5u;

// 16-byte aligned words (the zoom functions need aligned lines).
struct Words {
  explicit Words(std::size_t n, std::uint32_t fill = 0) : storage(n + 4, fill), size(n) {
    const auto at = reinterpret_cast<std::uintptr_t>(storage.data());
    data = storage.data() + ((16 - at % 16) % 16) / 4;
  }
  std::vector<std::uint32_t> contents() const { return {data, data + size}; }
  std::vector<std::uint32_t> storage;
  std::size_t size;
  std::uint32_t* data;
};

// One export and how it writes row r: `words` output words per row (a multiple of 4).
struct Export {
  const char* name;
  std::size_t words;
  std::function<void(std::uint32_t* out, int r)> call;
};

class Threads : public testing::Test {
 protected:
  Threads() : src_(kW * (kRows + 4)), fg_(kW * (kRows + 4)), mask_(kW * (kRows + 4)), lut_(256) {
    harness::Rng rng(29);
    harness::random_pixels({src_.data, static_cast<std::size_t>(kW * (kRows + 4))}, rng);
    harness::random_pixels({fg_.data, static_cast<std::size_t>(kW * (kRows + 4))}, rng);
    harness::random_bytes(mask_, rng);
    harness::random_bytes(lut_, rng);
  }
  const std::uint32_t* src(int r) const { return src_.data + kW * r; }
  const std::uint32_t* fg(int r) const { return fg_.data + kW * r; }
  const std::uint8_t* mask(int r) const { return mask_.data() + kW * r; }
  const std::uint8_t* lut() const { return lut_.data(); }
  static std::uint32_t opacity(int r) { return 0x01000000u * r + 40u * r; }  // some above 256

  std::vector<Export> exports() const {
    using U = std::uint32_t*;
    std::vector<Export> e = {
        {"pixinit", 4, [](U, int) { qx_pixinit(); }},
        {"r210argb", 4, [this](U o, int r) { qx_c_call_stub_as_converter(o, src(r), kN); }},
        {"fill", 68, [](U o, int r) { qx_fill(o, 0x01020304u * r, kN); }},
        {"argb2ayuv", 68, [this](U o, int r) { qx_argb2ayuv(o, src(r), kN); }},
        {"ayuv2argb", 68, [this](U o, int r) { qx_ayuv2argb(o, src(r), kN); }},
        {"v210yuv422p10", 68,  // 66 pixels: 11 blocks of source, 132 samples out
         [this](U o, int r) { qx_v210yuv422p10(reinterpret_cast<std::uint16_t*>(o), src(r), 66); }},
        {"alpha", 68, [this](U o, int r) { qx_alpha(o, src(r), kN); }},
        {"mask", 68, [this](U o, int r) { qx_mask(o, src(r), mask(r), kN); }},
        {"lin_pix", 68, [this](U o, int r) { qx_lin_pix(o, src(r), fg(r), opacity(r), kN); }},
        {"zoom_in2x1d", 136, [this](U o, int r) { qx_zoom_in2x1d(o, src(r), 68); }},
        {"zoom_in2x2d", 4 * 68, [this](U o, int r) { qx_zoom_in2x2d(o, src(r), 34, 2, kW); }},
        {"scale_1d", 52, [this](U o, int r) { qx_scale_1d(o, 50, src(r), kN); }},
        {"scale_horz", 80, [this](U o, int r) { qx_scale_horz(o, 40, 40, src(r), kN, 2, kW); }},
        {"zoom_outNx", 40, [this](U o, int r) { qx_zoom_outNx(o, 20, 2, src(r), kN, 3); }},
    };
    // The three blend families, each in its five variants.
    using Blend = void(U, const std::uint32_t*, const std::uint32_t*, std::int32_t);
    using BlendT = void(U, const std::uint32_t*, const std::uint32_t*, std::int32_t, std::uint32_t);
    using BlendM =
        void(U, const std::uint32_t*, const std::uint32_t*, std::int32_t, const std::uint8_t*);
    using BlendMt = void(U, const std::uint32_t*, const std::uint32_t*, std::int32_t,
                         const std::uint8_t*, std::uint32_t);
    using BlendMlt = void(U, const std::uint32_t*, const std::uint32_t*, std::int32_t,
                          const std::uint8_t*, const std::uint8_t*, std::uint32_t);
    struct Family {
      const char* names[5];
      Blend* plain;
      BlendT* t;
      BlendM* m;
      BlendMt* mt;
      BlendMlt* mlt;
    };
    const Family families[] = {
        {{"blend", "blend_t", "blend_m", "blend_mt", "blend_mlt"},
         qx_blend,
         qx_blend_t,
         qx_blend_m,
         qx_blend_mt,
         qx_blend_mlt},
        {{"lblend", "lblend_t", "lblend_m", "lblend_mt", "lblend_mlt"},
         qx_lblend,
         qx_lblend_t,
         qx_lblend_m,
         qx_lblend_mt,
         qx_lblend_mlt},
        {{"sblend", "sblend_t", "sblend_m", "sblend_mt", "sblend_mlt"},
         qx_sblend,
         qx_sblend_t,
         qx_sblend_m,
         qx_sblend_mt,
         qx_sblend_mlt},
    };
    for (const Family& f : families) {
      e.push_back({f.names[0], 68, [this, f](U o, int r) { f.plain(o, src(r), fg(r), kN); }});
      e.push_back(
          {f.names[1], 68, [this, f](U o, int r) { f.t(o, src(r), fg(r), kN, opacity(r)); }});
      e.push_back({f.names[2], 68, [this, f](U o, int r) { f.m(o, src(r), fg(r), kN, mask(r)); }});
      e.push_back({f.names[3], 68,
                   [this, f](U o, int r) { f.mt(o, src(r), fg(r), kN, mask(r), opacity(r)); }});
      e.push_back({f.names[4], 68, [this, f](U o, int r) {
                     f.mlt(o, src(r), fg(r), kN, mask(r), lut(), opacity(r));
                   }});
    }
    return e;
  }

  Words src_, fg_;
  std::vector<std::uint8_t> mask_, lut_;
};

TEST_F(Threads, RacingFirstUseGivesTheSingleThreadedResult) {
  const std::vector<Export> all = exports();
  ASSERT_EQ(all.size(), 29u);  // every export
  std::vector<Words> raced, serial;
  for (const Export& e : all) {
    raced.emplace_back(e.words * kRows, kMarker);
    serial.emplace_back(e.words * kRows, kMarker);
  }

  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      for (std::size_t k = 0; k < all.size(); ++k)
        for (int r = t; r < kRows; r += kThreads) all[k].call(raced[k].data + all[k].words * r, r);
    });
  for (std::thread& t : threads) t.join();

  for (std::size_t k = 0; k < all.size(); ++k)
    for (int r = 0; r < kRows; ++r) all[k].call(serial[k].data + all[k].words * r, r);

  for (std::size_t k = 0; k < all.size(); ++k)
    EXPECT_EQ(raced[k].contents(), serial[k].contents()) << all[k].name;
}

}  // namespace
}  // namespace qx::test
