// Line resampling and zoom-out: the position table, the tap pairing of the line kernel, every form
// against the scalar form, the per-row scaler, whole-factor shrinking, and the argument ranges
// that must write nothing.
#include "scale/resample.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "catalog.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

std::uint32_t mix(std::uint32_t l, std::uint32_t r, std::uint32_t f) {
  std::uint32_t out = 0;
  for (int k = 0; k < 32; k += 8)
    out |= (((l >> k & 255) * (256 - f) >> 8) + ((r >> k & 255) * f >> 8)) << k;
  return out;
}

std::vector<Form<ScaleLineFn>> supported_forms() {
  std::vector<Form<ScaleLineFn>> out;
  for (const auto& f : scale_line_interp_forms)
    if (cpu_supports(f.isa)) out.push_back(f);
  return out;
}

std::vector<std::uint32_t> random_line(std::size_t n, std::uint32_t seed) {
  harness::Rng rng(seed);
  std::vector<std::uint32_t> v(n);
  harness::random_pixels(v, rng);
  return v;
}

bool all_markers(const std::uint8_t* p, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i)
    if (p[i] != Guarded::kMarker) return false;
  return true;
}

TEST(ScaleStepTable, Positions) {
  const struct {
    std::int32_t start, src, dst;
    std::vector<std::int32_t> table;
  } cases[] = {
      {0, 5, 8, {0, 146, 292, 438, 584, 730, 876, 1023}},
      {0, 9, 5, {0, 511, 1022, 1533, 2047}},
      {0, 5, 6, {0, 204, 408, 612, 816, 1023}},
      {0, 4, 4, {0, 255, 510, 767}},  // own length: one 1/256 short per output
      {0, 2, 2, {0, 255}},
      {0, 2, 5, {0, 63, 126, 189, 255}},
      {1024, 1, 3, {1024, 513, -1}},  // end before start: the walk runs backwards
  };
  for (const auto& c : cases) {
    std::vector<std::int32_t> t(c.dst);
    scale_step_table(t.data(), c.start, c.src, c.dst);
    EXPECT_EQ(t, c.table) << c.src << " -> " << c.dst;
  }
}

// Outputs as (left index, right index, fraction); only 4 * (dst / 4) are written.
struct Tap {
  std::int32_t l, r;
  std::uint32_t f;
};

TEST(ScaleLine, WorkedTapsInEveryForm) {
  struct Case {
    std::int32_t src, dst;
    std::vector<Tap> taps;
  };
  std::vector<Case> cases = {
      {5,
       8,
       {{0, 1, 0},
        {1, 1, 146},
        {1, 2, 36},
        {2, 2, 182},
        {2, 3, 72},
        {3, 3, 218},
        {3, 4, 108},
        {4, 4, 255}}},
      {9, 5, {{0, 1, 0}, {1, 2, 255}, {3, 4, 254}, {4, 6, 253}}},
      {5, 6, {{0, 1, 0}, {1, 1, 204}, {1, 2, 152}, {2, 3, 100}}},
      {4, 4, {{0, 1, 0}, {1, 1, 255}, {1, 2, 254}, {2, 3, 255}}},  // not copies
      {2, 3, {}},
      {301, 300, {}},
  };
  for (std::int32_t j = 0; j < 299; ++j) cases.back().taps.push_back({j, j + 1, 0});
  cases.back().taps.push_back({299, 300, 255});

  const PageEnd page(4 * 400);
  for (const auto& form : supported_forms()) {
    for (const Case& c : cases) {
      SCOPED_TRACE(testing::Message() << isa_name(form.isa) << " " << c.src << " -> " << c.dst);
      const auto line = random_line(c.src, 7);
      auto* src = reinterpret_cast<std::uint32_t*>(page.flush(4 * c.src));
      std::memcpy(src, line.data(), 4 * c.src);
      Guarded out(4 * c.dst, 0);
      scale_1d(form.fn, out.as<std::uint32_t>(), c.dst, src, c.src);
      EXPECT_TRUE(out.guards_intact());
      for (std::size_t j = 0; j < c.taps.size(); ++j) {
        const Tap& t = c.taps[j];
        EXPECT_EQ(out.as<std::uint32_t>()[j], mix(line[t.l], line[t.r], t.f)) << "output " << j;
      }
      EXPECT_TRUE(all_markers(out.data() + 4 * c.taps.size(), 4 * (c.dst - c.taps.size())));
    }
  }
}

TEST(ScaleLine, EveryFormMatchesScalar) {
  const std::pair<std::int32_t, std::int32_t> sizes[] = {
      {2, 4},      {2, 2},      {3, 4},    {5, 8},    {9, 5},       {7, 7},       {37, 64},
      {100, 1000}, {1000, 100}, {2, 1003}, {4001, 8}, {1920, 1280}, {1920, 3840}, {1919, 13}};
  const PageEnd page(4 * 4100);
  for (const auto& [sn, dn] : sizes) {
    const auto line = random_line(sn, sn * 31 + dn);
    std::vector<std::uint32_t> want(dn / 4 * 4);
    scale_1d(scalar::scale_line_interp, want.data(), dn, line.data(), sn);
    for (const auto& form : supported_forms()) {
      // Lines ending exactly at the inaccessible page, and at each alignment.
      for (int offset : {-1, 0, 4, 8, 12}) {
        SCOPED_TRACE(testing::Message()
                     << isa_name(form.isa) << " " << sn << " -> " << dn << " offset " << offset);
        auto* src = offset < 0 ? page.flush(4 * sn) : page.place(4 * sn, offset);
        std::memcpy(src, line.data(), 4 * sn);
        Guarded out(4 * want.size(), 0);
        scale_1d(form.fn, out.as<std::uint32_t>(), dn, reinterpret_cast<std::uint32_t*>(src), sn);
        EXPECT_TRUE(out.guards_intact());
        const std::uint32_t* got = out.as<std::uint32_t>();
        EXPECT_EQ(std::vector<std::uint32_t>(got, got + want.size()), want);
      }
    }
  }
}

TEST(ScaleHorz, EveryRowIsScale1d) {
  const struct {
    std::int32_t dst_w, dst_stride, src_w, src_stride, height;
  } cases[] = {
      {8, 8, 5, 5, 3}, {12, 16, 30, 33, 4}, {640, 644, 1920, 1921, 2},
      {6, 8, 9, 9, 5}, {16, -16, 7, -9, 3}, {7, 8, 3, 3, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.dst_w << "x" << c.height << " from " << c.src_w);
    const std::ptrdiff_t src_rows = std::ptrdiff_t{std::abs(c.src_stride)} * (c.height - 1);
    const std::ptrdiff_t dst_rows = std::ptrdiff_t{std::abs(c.dst_stride)} * (c.height - 1);
    const auto pic = random_line(src_rows + c.src_w, c.src_w * 7 + c.height);
    const std::uint32_t* src = pic.data() + (c.src_stride < 0 ? src_rows : 0);
    std::vector<std::uint32_t> want(dst_rows + c.dst_w, 0x5A5A5A5Au), got = want;
    const std::ptrdiff_t dst0 = c.dst_stride < 0 ? dst_rows : 0;
    for (std::int32_t y = 0; y < c.height; ++y)
      qx_scale_1d(want.data() + dst0 + std::ptrdiff_t{y} * c.dst_stride, c.dst_w,
                  src + std::ptrdiff_t{y} * c.src_stride, c.src_w);
    qx_scale_horz(got.data() + dst0, c.dst_w, c.dst_stride, src, c.src_w, c.height, c.src_stride);
    EXPECT_EQ(got, want);
  }
}

TEST(ZoomOut, TopLeftPixelOfEachBlock) {
  const struct {
    std::int32_t src_w, src_h, dst_w, dst_h, fx, fy;
  } cases[] = {
      {640, 480, 320, 240, 2, 2},
      {10, 4, 6, 2, 2, 2},  // column 5 is source column 10: the next row's first pixel
      {7, 7, 3, 3, 3, 3},
      {5, 3, 5, 3, 1, 1},
      {3, 4, 3, 3, 1, 2},  // row 2 is source row 4, past the picture
      {4, 4, 8, 8, 1, 1},  // enlarging: samples run on through the following rows
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << c.src_w << "x" << c.src_h << " -> " << c.dst_w << "x" << c.dst_h);
    // Pixel values are their own index, with room for every sample the factors reach.
    std::vector<std::uint32_t> src(c.src_w * c.fy * c.dst_h + c.fx * c.dst_w);
    for (std::size_t i = 0; i < src.size(); ++i) src[i] = static_cast<std::uint32_t>(i);
    Guarded out(4 * c.dst_w * c.dst_h, 4);
    qx_zoom_outNx(out.as<std::uint32_t>(), c.dst_w, c.dst_h, src.data(), c.src_w, c.src_h);
    EXPECT_TRUE(out.guards_intact());
    for (std::int32_t r = 0; r < c.dst_h; ++r)
      for (std::int32_t x = 0; x < c.dst_w; ++x)
        ASSERT_EQ(out.as<std::uint32_t>()[r * c.dst_w + x],
                  static_cast<std::uint32_t>(r * c.fy * c.src_w + x * c.fx))
            << r << "," << x;
  }
}

// Arguments that would divide by zero or address far outside the buffers write nothing.
TEST(ScaleContract, OutOfRangeArgumentsWriteNothing) {
  const std::vector<std::uint32_t> src(64, 0x12345678u);
  constexpr std::size_t kBytes = 4 * 64;
  const struct {
    std::int32_t dst, src;
  } lines[] = {{1, 5}, {0, 5},  {-4, 5}, {INT_MIN, 5},         {8, 1},
               {8, 0}, {8, -3}, {3, 5},  {8, kMaxScaleSrc + 1}};
  for (const auto& c : lines) {
    SCOPED_TRACE(testing::Message() << c.src << " -> " << c.dst);
    Guarded a(kBytes, 0), b(kBytes, 0);
    qx_scale_1d(a.as<std::uint32_t>(), c.dst, src.data(), c.src);
    qx_scale_horz(b.as<std::uint32_t>(), c.dst, 16, src.data(), c.src, 2, 0);
    EXPECT_TRUE(a.guards_intact() && all_markers(a.data(), kBytes));
    EXPECT_TRUE(b.guards_intact() && all_markers(b.data(), kBytes));
  }
  for (std::int32_t height : {0, -1, INT_MIN}) {
    Guarded out(kBytes, 0);
    qx_scale_horz(out.as<std::uint32_t>(), 8, 8, src.data(), 5, height, 5);
    EXPECT_TRUE(out.guards_intact() && all_markers(out.data(), kBytes)) << height;
  }
  const struct {
    std::int32_t dst_w, dst_h, src_w, src_h;
  } zooms[] = {{0, 4, 8, 8}, {4, 0, 8, 8}, {-2, 4, 8, 8}, {4, -1, 8, 8},
               {4, 4, 0, 8}, {4, 4, 8, 0}, {2, 2, -1, 8}, {2, 2, 8, -1}};
  for (const auto& z : zooms) {
    Guarded out(kBytes, 0);
    qx_zoom_outNx(out.as<std::uint32_t>(), z.dst_w, z.dst_h, src.data(), z.src_w, z.src_h);
    EXPECT_TRUE(out.guards_intact() && all_markers(out.data(), kBytes))
        << z.dst_w << "x" << z.dst_h << " from " << z.src_w << "x" << z.src_h;
  }
}

}  // namespace
}  // namespace qx::test
