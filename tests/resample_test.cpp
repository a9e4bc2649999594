// Line resampling and zoom-out: worked positions and taps in every form, every form against the
// scalar form, the per-row scaler, whole-factor shrinking, and the arguments that write nothing.
#include "scale/resample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "catalog.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

constexpr std::uint32_t kMarkerPx = 0xA5A5A5A5u;  // four Guarded::kMarker bytes

std::vector<std::uint32_t> random_line(std::size_t n, std::uint32_t seed) {
  harness::Rng rng(seed);
  std::vector<std::uint32_t> v(n);
  harness::random_pixels(v, rng);
  return v;
}

// Runs every form this processor supports on `line`, copied to end exactly at an inaccessible page
// (offset -1) and to start at each offset mod 16, into guarded outputs. Expects every run to match
// the first, the scalar form at the page end, and returns that: all dst_count output slots, the
// ones left alone reading back as kMarkerPx.
std::vector<std::uint32_t> run_all(const std::vector<std::uint32_t>& line, std::int32_t dst_count) {
  static_assert(scale_1d_forms[0].isa == Isa::kScalar);
  static const PageEnd page(4 * 4100);
  const std::size_t bytes = 4 * line.size();
  std::vector<std::uint32_t> first;
  for (const auto& form : scale_1d_forms) {
    if (!cpu_supports(form.isa)) continue;
    for (int offset : {-1, 0, 4, 8, 12}) {
      auto* src = offset < 0 ? page.flush(bytes) : page.place(bytes, offset);
      std::memcpy(src, line.data(), bytes);
      Guarded out(4 * dst_count, offset < 0 ? 0 : 12 - offset);
      auto* dst = out.as<std::uint32_t>();
      form.fn(dst, dst_count, reinterpret_cast<std::uint32_t*>(src),
              static_cast<std::int32_t>(line.size()));
      const std::vector<std::uint32_t> got(dst, dst + dst_count);
      if (first.empty()) first = got;
      EXPECT_TRUE(out.guards_intact() && got == first)
          << isa_name(form.isa) << " " << line.size() << "->" << dst_count << " offset " << offset;
    }
  }
  return first;
}

// The outputs that (left index, right index, fraction) triples give, one triple per written
// output; the outputs after them read back as kMarkerPx. Each byte is
// l * (256 - f) / 256 + r * f / 256, products truncated.
std::vector<std::uint32_t> from_taps(const std::uint32_t* line, std::size_t dst_count,
                                     const std::uint32_t* taps, std::size_t n_taps) {
  std::vector<std::uint32_t> want(dst_count, kMarkerPx);
  for (std::size_t j = 0; 3 * j < n_taps; ++j) {
    const std::uint32_t l = line[taps[3 * j]], r = line[taps[3 * j + 1]], f = taps[3 * j + 2];
    want[j] = 0;
    for (int k = 0; k < 32; k += 8)
      want[j] |= (((l >> k & 255) * (256 - f) >> 8) + ((r >> k & 255) * f >> 8)) << k;
  }
  return want;
}

TEST(ScaleLine, WorkedTaps) {
  // {src count, dst count, then a (left index, right index, fraction) triple per written output};
  // later outputs stay unwritten. Byte = l * (256 - f) / 256 + r * f / 256, products truncated.
  std::vector<std::uint32_t> cases[] = {
      {5, 8, 0, 1, 0, 1, 1, 146, 1, 2, 36, 2, 2, 182, 2, 3, 72, 3, 3, 218, 3, 4, 108, 4, 4, 255},
      {9, 5, 0, 1, 0, 1, 2, 255, 3, 4, 254, 4, 6, 253},
      {5, 6, 0, 1, 0, 1, 1, 204, 1, 2, 152, 2, 3, 100},
      {4, 4, 0, 1, 0, 1, 1, 255, 1, 2, 254, 2, 3, 255},  // own length: not copies
      {2, 3},
      {301, 300},  // whole steps, then the last entry pinned 1/256 short of the end
  };
  for (std::uint32_t j = 0; j < 300; ++j) cases[5].insert(cases[5].end(), {j, j + 1, 0});
  cases[5].back() = 255;
  for (const auto& c : cases) {
    const auto line = random_line(c[0], 7);
    EXPECT_EQ(run_all(line, c[1]), from_taps(line.data(), c[1], c.data() + 2, c.size() - 2))
        << c[0] << "->" << c[1];
  }
}

// The longest source accepted: its last position, 256 * (2^23 - 1) - 1, still fits, and the last
// output reaches the last pixel.
TEST(ScaleLine, LongestSource) {
  static_assert(kMaxScaleSrc == 1 << 23);
  const std::uint32_t taps[] = {0,       1,       0,   1,       2796203, 85,
                                5592404, 5592405, 170, 5592405, 8388607, 255};
  // Zero pages cost nothing until written: only the tapped pixels are set.
  const std::unique_ptr<std::uint32_t[], void (*)(void*)> src(
      static_cast<std::uint32_t*>(std::calloc(kMaxScaleSrc, 4)), std::free);
  ASSERT_NE(src, nullptr);
  const auto values = random_line(std::size(taps), 5);
  for (std::size_t t = 0; t < std::size(taps); ++t)
    if (t % 3 != 2) src[taps[t]] = values[t];
  const auto want = from_taps(src.get(), 4, taps, std::size(taps));
  std::vector<std::pair<const char*, Scale1dFn*>> forms = {{"export", qx_scale_1d}};
  for (const auto& form : scale_1d_forms)
    if (cpu_supports(form.isa)) forms.emplace_back(isa_name(form.isa), form.fn);
  for (const auto& [name, fn] : forms) {
    Guarded out(16, 0);
    auto* dst = out.as<std::uint32_t>();
    fn(dst, 4, src.get(), kMaxScaleSrc);
    EXPECT_TRUE(out.guards_intact()) << name;
    EXPECT_EQ(std::vector<std::uint32_t>(dst, dst + 4), want) << name;
  }
}

TEST(ScaleLine, EveryFormMatchesScalar) {
  const std::int32_t sizes[][2] = {{2, 4},       {3, 4},     {7, 7},      {37, 64},
                                   {1000, 100},  {2, 1003},  {4001, 8},   {1920, 1280},
                                   {1919, 3839}, {1919, 13}, {1000, 501}, {1001, 500},
                                   {100, 107},   {100, 108}, {100, 116},  {100, 117}};
  for (const auto& [sn, dn] : sizes) run_all(random_line(sn, sn * 31 + dn), dn);
}

TEST(ScaleHorz, EveryRowIsScale1dEveryForm) {
  // {dst width, dst stride, src width, src stride, height}; rows start mid-buffer so that
  // strides of either sign stay inside it.
  const std::int32_t cases[][5] = {{8, 8, 5, 5, 3},      {12, 16, 30, 33, 4}, {6, 8, 9, 9, 5},
                                   {16, -16, 7, -9, 3},  {68, 68, 40, 40, 3}, {40, 44, 96, 97, 4},
                                   {131, 132, 47, 50, 2}};
  const auto pic = random_line(2048, 3);
  for (const auto& [dw, ds, sw, ss, height] : cases) {
    std::vector<std::uint32_t> want(2048, kMarkerPx);
    for (std::ptrdiff_t y = 0; y < height; ++y)
      scalar::scale_1d(want.data() + 1024 + y * ds, dw, pic.data() + 1024 + y * ss, sw);
    std::vector<std::pair<const char*, ScaleHorzFn*>> forms = {{"export", qx_scale_horz}};
    for (const auto& f : scale_horz_forms)
      if (cpu_supports(f.isa)) forms.emplace_back(isa_name(f.isa), f.fn);
    for (const auto& [name, fn] : forms) {
      std::vector<std::uint32_t> got(2048, kMarkerPx);
      fn(got.data() + 1024, dw, ds, pic.data() + 1024, sw, height, ss);
      EXPECT_EQ(got, want) << name << " " << dw << "x" << height << " from " << sw;
    }
  }
}

TEST(ZoomOut, TopLeftPixelOfEachBlockEveryForm) {
  // {src width, src height, dst width, dst height, x factor, y factor}. Samples are not clamped:
  // 10 -> 6 takes source column 10 (the next row's first pixel), 3x4 -> 3x3 reads source row 4
  // (past the picture), and enlarging runs on through the following rows.
  const std::int32_t cases[][6] = {
      {640, 480, 320, 240, 2, 2}, {10, 4, 6, 2, 2, 2},   {7, 7, 3, 3, 3, 3},
      {3, 4, 3, 3, 1, 2},         {4, 4, 8, 8, 1, 1},    {67, 9, 33, 2, 3, 5},
      {100, 3, 20, 3, 5, 1},      {99, 4, 50, 2, 2, 2},  {1919, 5, 960, 1, 2, 5},
      {70, 2, 35, 1, 2, 2},       {130, 1, 33, 1, 4, 1}, {64, 64, 1, 1, 64, 64}};
  static const PageEnd page(4 * 310000);
  std::vector<std::pair<const char*, ZoomOutFn*>> forms = {{"export", qx_zoom_outNx}};
  for (const auto& f : zoom_out_forms)
    if (cpu_supports(f.isa)) forms.emplace_back(isa_name(f.isa), f.fn);
  for (const auto& [sw, sh, dw, dh, fx, fy] : cases) {
    // Pixel values are their own index; the source ends with the last sample, at a page end.
    const std::size_t n = std::size_t(sw) * fy * (dh - 1) + std::size_t(fx) * (dw - 1) + 1;
    auto* src = reinterpret_cast<std::uint32_t*>(page.flush(4 * n));
    for (std::size_t i = 0; i < n; ++i) src[i] = static_cast<std::uint32_t>(i);
    std::vector<std::uint32_t> want(dw * dh + 4, kMarkerPx);
    for (std::int32_t r = 0; r < dh; ++r)
      for (std::int32_t x = 0; x < dw; ++x) want[r * dw + x] = r * fy * sw + x * fx;
    for (const auto& [name, fn] : forms) {
      std::vector<std::uint32_t> got(dw * dh + 4, kMarkerPx);
      fn(got.data(), dw, dh, src, sw, sh);
      EXPECT_EQ(got, want) << name << " " << sw << "x" << sh << " -> " << dw << "x" << dh;
      if (dw > sw) continue;  // in place: the output overwrites the source behind the samples
      for (std::size_t offset : {0, 4, 16, 32, 48}) {
        Guarded in_place(4 * n, offset);
        auto* pic = in_place.as<std::uint32_t>();
        std::copy(src, src + n, pic);
        fn(pic, dw, dh, pic, sw, sh);
        EXPECT_TRUE(std::equal(want.begin(), want.begin() + dw * dh, pic))
            << name << " in place at " << offset << ", " << sw << "x" << sh << " -> " << dw << "x"
            << dh;
      }
    }
  }
}

// Arguments that would divide by zero or address far outside the buffers write nothing.
TEST(ScaleContract, OutOfRangeArgumentsWriteNothing) {
  enum { kLine, kRows, kZoom };
  const std::int32_t cases[][5] = {
      {kLine, 1, 5},       {kLine, 0, 5},        {kLine, INT32_MIN, 5},        {kLine, 8, 1},
      {kLine, 8, 0},       {kLine, 8, -3},       {kLine, 8, kMaxScaleSrc + 1}, {kRows, 8, 5, 0},
      {kRows, 8, 5, -1},   {kZoom, 0, 4, 8, 8},  {kZoom, 4, 0, 8, 8},          {kZoom, 4, 4, 0, 8},
      {kZoom, 4, 4, 8, 0}, {kZoom, 2, 2, -1, 8}, {kZoom, 2, 2, 8, -1}};
  const std::vector<std::uint32_t> src(64, 0x12345678u), untouched(64, kMarkerPx);
  for (const auto& [call, a, b, c, d] : cases) {
    std::vector<std::uint32_t> out = untouched;
    if (call == kLine) qx_scale_1d(out.data(), a, src.data(), b);
    if (call == kRows) qx_scale_horz(out.data(), a, 16, src.data(), b, c, 0);
    if (call == kZoom) qx_zoom_outNx(out.data(), a, b, src.data(), c, d);
    EXPECT_EQ(out, untouched) << call << ": " << a << " " << b << " " << c << " " << d;
  }
}

}  // namespace
}  // namespace qx::test
