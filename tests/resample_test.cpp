// Line resampling and zoom-out: worked positions and taps in every form, every form against the
// scalar form, the per-row scaler, whole-factor shrinking, and the arguments that write nothing.
#include "scale/resample.h"

#include <gtest/gtest.h>

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
  static_assert(scale_line_interp_forms[0].isa == Isa::kScalar);
  static const PageEnd page(4 * 4100);
  const std::size_t bytes = 4 * line.size();
  std::vector<std::uint32_t> first;
  for (const auto& form : scale_line_interp_forms) {
    if (!cpu_supports(form.isa)) continue;
    for (int offset : {-1, 0, 4, 8, 12}) {
      auto* src = offset < 0 ? page.flush(bytes) : page.place(bytes, offset);
      std::memcpy(src, line.data(), bytes);
      Guarded out(4 * dst_count, offset < 0 ? 0 : 12 - offset);
      auto* dst = out.as<std::uint32_t>();
      scale_1d(form.fn, dst, dst_count, reinterpret_cast<std::uint32_t*>(src),
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
  std::vector<std::pair<const char*, ScaleLineFn*>> forms;
  for (const auto& form : scale_line_interp_forms)
    if (cpu_supports(form.isa)) forms.emplace_back(isa_name(form.isa), form.fn);
  forms.emplace_back("export", nullptr);
  for (const auto& [name, fn] : forms) {
    Guarded out(16, 0);
    auto* dst = out.as<std::uint32_t>();
    if (fn)
      scale_1d(fn, dst, 4, src.get(), kMaxScaleSrc);
    else
      qx_scale_1d(dst, 4, src.get(), kMaxScaleSrc);
    EXPECT_TRUE(out.guards_intact()) << name;
    EXPECT_EQ(std::vector<std::uint32_t>(dst, dst + 4), want) << name;
  }
}

TEST(ScaleLine, EveryFormMatchesScalar) {
  const std::int32_t sizes[][2] = {{2, 4},    {3, 4},    {7, 7},       {37, 64},     {1000, 100},
                                   {2, 1003}, {4001, 8}, {1920, 1280}, {1919, 3839}, {1919, 13}};
  for (const auto& [sn, dn] : sizes) run_all(random_line(sn, sn * 31 + dn), dn);
}

TEST(ScaleHorz, EveryRowIsScale1d) {
  // {dst width, dst stride, src width, src stride, height}; rows start mid-buffer so that
  // strides of either sign stay inside it.
  const std::int32_t cases[][5] = {
      {8, 8, 5, 5, 3}, {12, 16, 30, 33, 4}, {6, 8, 9, 9, 5}, {16, -16, 7, -9, 3}};
  const auto pic = random_line(512, 3);
  for (const auto& [dw, ds, sw, ss, height] : cases) {
    std::vector<std::uint32_t> want(512, kMarkerPx), got = want;
    for (std::ptrdiff_t y = 0; y < height; ++y)
      qx_scale_1d(want.data() + 256 + y * ds, dw, pic.data() + 256 + y * ss, sw);
    qx_scale_horz(got.data() + 256, dw, ds, pic.data() + 256, sw, height, ss);
    EXPECT_EQ(got, want) << dw << "x" << height << " from " << sw;
  }
}

TEST(ZoomOut, TopLeftPixelOfEachBlock) {
  // {src width, src height, dst width, dst height, x factor, y factor}. Samples are not clamped:
  // 10 -> 6 takes source column 10 (the next row's first pixel), 3x4 -> 3x3 reads source row 4
  // (past the picture), and enlarging runs on through the following rows.
  const std::int32_t cases[][6] = {{640, 480, 320, 240, 2, 2},
                                   {10, 4, 6, 2, 2, 2},
                                   {7, 7, 3, 3, 3, 3},
                                   {3, 4, 3, 3, 1, 2},
                                   {4, 4, 8, 8, 1, 1}};
  for (const auto& [sw, sh, dw, dh, fx, fy] : cases) {
    // Pixel values are their own index, with room for every sample the factors reach.
    std::vector<std::uint32_t> src(sw * fy * dh + fx * dw), got(dw * dh + 4, kMarkerPx), want = got;
    for (std::size_t i = 0; i < src.size(); ++i) src[i] = static_cast<std::uint32_t>(i);
    for (std::int32_t r = 0; r < dh; ++r)
      for (std::int32_t x = 0; x < dw; ++x) want[r * dw + x] = r * fy * sw + x * fx;
    qx_zoom_outNx(got.data(), dw, dh, src.data(), sw, sh);
    EXPECT_EQ(got, want) << sw << "x" << sh << " -> " << dw << "x" << dh;
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
