// qx_lin_pix worked values (its forms' agreement on random lines is in line_forms_test.cpp), and
// the zoom-in functions: worked values, calls that must write nothing, and every form against the
// scalar form on random pictures, with guard zones around every output.
#include "scale/linzoom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "catalog.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

constexpr std::uint32_t kMarkerPx = 0xA5A5A5A5u;  // four Guarded::kMarker bytes

std::uint32_t splat(std::uint8_t b) { return 0x01010101u * b; }

TEST(LinPix, WorkedValuesEveryForm) {
  // Pixels whose four bytes (alpha included) all equal a and b; a or b of -1: a random line, which
  // the end weights must copy exactly.
  const struct {
    std::uint32_t weight;
    int a, b, out;
  } cases[] = {
      {128, 255, 255, 254},  // halves truncated separately
      {128, 1, 1, 0},       {128, 255, 0, 127},   {64, 200, 100, 125},
      {1, 255, 255, 254},   {255, 255, 255, 254}, {0, -1, 9, 9},
      {256, 7, -1, 7},      {257, 7, -1, 7},      {0xFFFFFFFFu, 7, -1, 7},
  };
  harness::Rng rng(7);
  std::vector<std::uint32_t> random(7);
  harness::random_pixels(random, rng);
  auto line = [&](int v) { return v < 0 ? random : std::vector<std::uint32_t>(7, splat(v)); };
  for (const harness::LineForm& form : harness::line_kernel_named("lin_pix").forms) {
    if (!form.supported()) continue;
    for (auto c : cases) {
      const std::vector<std::uint32_t> a = line(c.a), b = line(c.b);
      std::vector<std::uint32_t> out(7);
      form.run({out.data(), {a.data(), b.data()}, nullptr, nullptr, c.weight, 7});
      EXPECT_EQ(out, line(c.out)) << form.name << " weight " << c.weight << " " << c.a << "/"
                                  << c.b;
    }
  }
}

// ---- zoom in by two ----

struct ZoomForm {
  std::string name;
  Isa isa;
  ZoomIn1dFn* line;
  ZoomIn2dFn* picture;
};
void PrintTo(const ZoomForm& f, std::ostream* os) { *os << f.name; }

std::vector<ZoomForm> zoom_forms() {
  static_assert(std::size(zoom_in2x1d_forms) == std::size(zoom_in2x2d_forms));
  std::vector<ZoomForm> forms;
  for (std::size_t i = 0; i < std::size(zoom_in2x1d_forms); ++i)
    forms.push_back({isa_name(zoom_in2x1d_forms[i].isa), zoom_in2x1d_forms[i].isa,
                     zoom_in2x1d_forms[i].fn, zoom_in2x2d_forms[i].fn});
  forms.push_back({"export", Isa::kScalar, qx_zoom_in2x1d, qx_zoom_in2x2d});
  return forms;
}

class Zoom : public testing::TestWithParam<ZoomForm> {
 protected:
  void SetUp() override {
    if (!cpu_supports(GetParam().isa)) GTEST_SKIP() << "not supported on this processor";
  }
};

// Four source pixels whose neighbours show the downward truncation: FF & 00 -> 7F, 01 & 02 -> 01,
// 40 & 41 -> 40.
constexpr std::uint32_t kP[4] = {0xFF0201FFu, 0x00010200u, 0x10203040u, 0x11213141u};
constexpr std::uint32_t kDoubled[8] = {kP[0],       kP[0], 0x7F01017Fu, kP[1],
                                       0x08101920u, kP[2], 0x10203040u, kP[3]};

// count 4..7 give the same eight pixels and leave the rest alone; below 4 nothing is written.
TEST_P(Zoom, LineWorkedValues) {
  for (std::int32_t count = -5; count <= 7; ++count) {
    Guarded src(16 * 2, 0);
    std::memcpy(src.data(), kP, sizeof kP);
    for (std::int32_t i = 4; i < count; ++i) src.as<std::uint32_t>()[i] = 0x12345678u * i;
    Guarded dst(4 * 16, 0);
    GetParam().line(dst.as<std::uint32_t>(), src.as<std::uint32_t>(), count);
    for (std::int32_t i = 0; i < 16; ++i)
      EXPECT_EQ(dst.as<std::uint32_t>()[i], i < 8 && count >= 4 ? kDoubled[i] : kMarkerPx)
          << "count " << count << " pixel " << i;
    EXPECT_TRUE(dst.guards_intact()) << "count " << count;
  }
}

TEST_P(Zoom, PictureWorkedValues) {
  constexpr std::int32_t kStride = 8;  // source rows 8 pixels apart, width 4
  Guarded src(4 * kStride * 2, 0);
  auto* s = src.as<std::uint32_t>();
  std::fill(s, s + 2 * kStride, 0xDEADBEEFu);      // the gap between rows is never read
  std::memcpy(s, kP, sizeof kP);                   // row 0
  std::fill(s + kStride, s + kStride + 4, kP[1]);  // row 1: constant, so doubled unchanged
  const std::uint32_t row1_doubled = kP[1];
  auto vavg = [](std::uint32_t x, std::uint32_t y) {
    std::uint32_t r = 0;
    for (int k = 0; k < 32; k += 8) r |= (((x >> k & 0xFF) + (y >> k & 0xFF)) >> 1) << k;
    return r;
  };

  Guarded dst(4 * 8 * 4, 0);  // room for four output rows of 8 pixels
  auto* d = dst.as<std::uint32_t>();
  auto row = [&](int r, int i) { return d[8 * r + i]; };

  // height 2: R0 doubled row 0, R1 their average, R2 doubled row 1, R3 = R2.
  GetParam().picture(d, s, 4, 2, kStride);
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(row(0, i), kDoubled[i]) << i;
    EXPECT_EQ(row(1, i), vavg(kDoubled[i], row1_doubled)) << i;
    EXPECT_EQ(row(2, i), row1_doubled) << i;
    EXPECT_EQ(row(3, i), row1_doubled) << i;
  }
  EXPECT_EQ(row(1, 0), 0x7F01017Fu);  // vertically too: FF & 00 -> 7F, 01 & 02 -> 01

  // height 1: R0 doubled, R1 its copy, nothing below.
  std::fill(d, d + 32, kMarkerPx);
  GetParam().picture(d, s, 4, 1, kStride);
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(row(0, i), kDoubled[i]) << i;
    EXPECT_EQ(row(1, i), kDoubled[i]) << i;
    EXPECT_EQ(row(2, i), kMarkerPx) << i;
  }

  // height 0 or below: only R0 (not written by the call) is copied into R1.
  for (std::int32_t height : {0, -3}) {
    std::fill(d, d + 32, kMarkerPx);
    for (int i = 0; i < 8; ++i) d[i] = 0x01020304u * (i + 1);
    GetParam().picture(d, nullptr, 4, height, kStride);
    for (int i = 0; i < 8; ++i) {
      EXPECT_EQ(row(0, i), 0x01020304u * (i + 1)) << i;
      EXPECT_EQ(row(1, i), 0x01020304u * (i + 1)) << i;
      EXPECT_EQ(row(2, i), kMarkerPx) << i;
    }
  }
  EXPECT_TRUE(dst.guards_intact());
}

TEST_P(Zoom, NegativeWidthWritesNothing) {
  Guarded src(256, 0), dst(256, 0);
  for (std::int32_t width : {-1, -4, -1000, std::numeric_limits<std::int32_t>::min()})
    for (std::int32_t height : {-1, 0, 1, 3}) {
      GetParam().picture(dst.as<std::uint32_t>(), src.as<std::uint32_t>(), width, height, 16);
      EXPECT_TRUE(std::all_of(dst.data(), dst.data() + 256, [](auto b) { return b == 0xA5; }))
          << "width " << width << " height " << height;
    }
  EXPECT_TRUE(dst.guards_intact());
}

// Random source, random prior dst content (the pixels a call leaves alone must keep it).
TEST_P(Zoom, LineMatchesScalarForm) {
  harness::Rng rng(11);
  const PageEnd src_page(4 * 1920 + 64);
  std::vector<std::int32_t> counts;
  for (std::int32_t n = 0; n <= 40; ++n) counts.push_back(n);
  counts.push_back(1920);
  for (std::int32_t count : counts) {
    std::vector<std::uint32_t> line(std::max(count, 4)), prior(2 * count + 1);  // + 1: never empty
    harness::random_pixels(line, rng);
    harness::random_pixels(prior, rng);
    // The line ends as close before an inaccessible page as 16-byte alignment allows.
    auto* src = src_page.place_as<std::uint32_t>(line.size(), 0);
    std::memcpy(src, line.data(), 4 * line.size());
    std::vector<std::uint32_t> ref = prior;
    zoom_in2x1d_forms[0].fn(ref.data(), src, count);
    Guarded dst(8 * count, 0);
    std::memcpy(dst.data(), prior.data(), 8 * count);
    GetParam().line(dst.as<std::uint32_t>(), src, count);
    EXPECT_EQ(std::memcmp(dst.data(), ref.data(), 8 * count), 0) << "count " << count;
    EXPECT_TRUE(dst.guards_intact()) << "count " << count;
  }
}

TEST_P(Zoom, PictureMatchesScalarForm) {
  harness::Rng rng(12);
  struct Size {
    std::int32_t width, height, stride;
  };
  std::vector<Size> sizes = {{1920, 4, 1920}, {1920, 3, 1924}, {6, 4, 0}};  // stride 0: one row
  for (std::int32_t w : {0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 16, 20})
    for (std::int32_t h : {-2, 0, 1, 2, 3, 5})
      sizes.push_back({w, h, (w + 3) / 4 * 4 + 4 * (h & 1)});
  for (const Size& z : sizes) {
    const std::size_t out_w = 2 * std::size_t(z.width);
    const std::size_t out_rows = 2 * std::size_t(std::max(z.height, 1));
    const std::size_t src_px = std::size_t(std::max(z.stride, 4)) * std::max(z.height, 1) + 4;
    Guarded src(4 * src_px, 0);
    harness::random_pixels({src.as<std::uint32_t>(), src_px}, rng);
    std::vector<std::uint32_t> prior(out_w * out_rows + 1);  // + 1: never empty
    harness::random_pixels(prior, rng);
    std::vector<std::uint32_t> ref = prior;
    zoom_in2x2d_forms[0].fn(ref.data(), src.as<std::uint32_t>(), z.width, z.height, z.stride);
    const std::size_t bytes = 4 * out_w * out_rows;
    Guarded dst(bytes, 0);
    std::memcpy(dst.data(), prior.data(), bytes);
    GetParam().picture(dst.as<std::uint32_t>(), src.as<std::uint32_t>(), z.width, z.height,
                       z.stride);
    const std::string where = std::to_string(z.width) + "x" + std::to_string(z.height) +
                              " stride " + std::to_string(z.stride);
    EXPECT_EQ(std::memcmp(dst.data(), ref.data(), bytes), 0) << where;
    EXPECT_TRUE(dst.guards_intact()) << where;
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, Zoom, testing::ValuesIn(zoom_forms()),
                         [](const testing::TestParamInfo<ZoomForm>& info) {
                           return info.param.name;
                         });

}  // namespace
}  // namespace qx::test
