// Worked values of qx_lin_pix's scalar form (line_forms_test.cpp holds its other forms to it), and
// of the zoom-in functions in every form, also held to their scalar forms on random pictures.
#include "scale/linzoom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

#include "catalog.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

using Px = std::vector<std::uint32_t>;

TEST(LinPix, WorkedValues) {
  // Lines of seven pixels (a group and a tail) whose bytes all equal a and b.
  const struct {
    std::uint32_t weight, a, b, out;
  } cases[] = {
      {128, 255, 255, 254}, {128, 1, 1, 0},           {128, 255, 0, 127},
      {64, 200, 100, 125},  {0, 255, 1, 1},           {256, 1, 255, 1},
      {257, 1, 255, 1},     {0xFFFFFFFFu, 1, 255, 1},  // copies
  };
  for (auto c : cases) {
    const Px a(7, 0x01010101u * c.a), b(7, 0x01010101u * c.b);
    Px out(7);
    scalar::lin_pix(out.data(), a.data(), b.data(), c.weight, 7);
    EXPECT_EQ(out, Px(7, 0x01010101u * c.out)) << c.weight << " on " << c.a << "/" << c.b;
  }
}

// Runs `check` on every form of a zoom function this processor supports, then on its export.
template <class Fn, std::size_t N, class Check>
void each_form(const Form<Fn> (&forms)[N], Fn* exported, Check check) {
  for (const Form<Fn>& f : forms)
    if (cpu_supports(f.isa)) {
      SCOPED_TRACE(isa_name(f.isa));
      check(f.fn);
    }
  SCOPED_TRACE("export");
  check(exported);
}

// Runs `call` on an output holding `prior` at `offset` mod 64, with guard zones around it; returns
// the output.
template <class Call>
Px run_guarded(const Px& prior, Call call, std::size_t offset = 0) {
  Guarded dst(4 * prior.size(), offset);
  std::memcpy(dst.data(), prior.data(), 4 * prior.size());
  call(dst.as<std::uint32_t>());
  EXPECT_TRUE(dst.guards_intact());
  return Px(dst.as<std::uint32_t>(), dst.as<std::uint32_t>() + prior.size());
}

// Rows 8 pixels apart: row 0 is four pixels and four that width 4 never reaches, row 1 a constant.
constexpr std::uint32_t kM = 0x01010101u * Guarded::kMarker, kC = 0x00010200u;
alignas(16) constexpr std::uint32_t kSrc[12] = {0xFF0201FFu, kC,          0x10203040u, 0x11213141u,
                                                0x12345678u, 0x9ABCDEF0u, 0x0F1E2D3Cu, 0x4B5A6978u,
                                                kC,          kC,          kC,          kC};
// Averages truncate: FF & 00 -> 7F, 01 & 02 -> 01, 19 & 02 -> 0D.
const Px kDoubled = {0xFF0201FFu, 0xFF0201FFu, 0x7F01017Fu, kC,
                     0x08101920u, 0x10203040u, 0x10203040u, 0x11213141u};
const Px kBetween = {0x7F01017Fu, 0x7F01017Fu, 0x3F01013Fu, kC,
                     0x04080D10u, 0x08101920u, 0x08101920u, 0x08111920u};
const Px kPrior = {1, 2, 3, 4, 5, 6, 7, 8}, kUntouched(8, kM), kRow1(8, kC);

TEST(Zoom, WorkedValuesEveryForm) {
  each_form(zoom_in2x1d_forms, qx_zoom_in2x1d, [&](ZoomIn1dFn* line) {
    for (std::int32_t count = -5; count <= 7; ++count)  // 4..7 double the first four alone
      EXPECT_EQ(run_guarded(kPrior, [&](std::uint32_t* d) { line(d, kSrc, count); }),
                count < 4 ? kPrior : kDoubled)
          << "count " << count;
  });
  const struct {
    std::int32_t width, height;
    Px rows[4];  // output rows R0..R3, R0 holding kPrior before the call
  } cases[] = {
      {4, 2, {kDoubled, kBetween, kRow1, kRow1}},
      {4, 1, {kDoubled, kDoubled, kUntouched, kUntouched}},
      {4, 0, {kPrior, kPrior, kUntouched, kUntouched}},  // R0 copied to R1, src never read
      {4, -3, {kPrior, kPrior, kUntouched, kUntouched}},
      {-1, 0, {kPrior, kUntouched, kUntouched, kUntouched}},  // negative width: nothing written
      {INT_MIN, 3, {kPrior, kUntouched, kUntouched, kUntouched}},
  };
  Px before = kPrior;
  before.resize(32, kM);
  each_form(zoom_in2x2d_forms, qx_zoom_in2x2d, [&](ZoomIn2dFn* picture) {
    for (const auto& c : cases) {
      auto call = [&](std::uint32_t* d) {
        picture(d, c.height > 0 ? kSrc : nullptr, c.width, c.height, 8);
      };
      const Px out = run_guarded(before, call);
      for (int r = 0; r < 4; ++r)
        EXPECT_EQ(Px(out.begin() + 8 * r, out.begin() + 8 * r + 8), c.rows[r])
            << c.width << "x" << c.height << " R" << r;
    }
  });
}

// Random source ending at an inaccessible page, random prior output (what a call leaves alone must
// keep it); the line forms double the first row.
TEST(Zoom, EveryFormMatchesScalarForm) {
  harness::Rng rng(11);
  const PageEnd page(4 * 4 * 1920);
  std::vector<std::array<std::int32_t, 3>> sizes = {
      {1920, 4, 1920}, {1922, 3, 1924}, {6, 4, 0}, {102, 3, 104}};
  for (std::int32_t w = 0; w <= 20; ++w)  // width, height, stride (0: one row repeated)
    for (std::int32_t h : {-2, 0, 1, 2, 3}) sizes.push_back({w, h, (w + 3) / 4 * 4 + 4 * (h & 1)});
  for (const auto& size : sizes) {
    const std::int32_t w = size[0], h = size[1], stride = size[2];
    const std::size_t rows = std::max(h, 1),
                      src_px = std::max<std::size_t>(stride * (rows - 1) + w, 4);
    auto* src = page.place_as<std::uint32_t>(src_px);
    harness::random_pixels({src, src_px}, rng);
    Px prior(4 * std::size_t(w) * rows + 1);  // + 1: never empty
    harness::random_pixels(prior, rng);
    Px line = prior, picture = prior;
    scalar::zoom_in2x1d(line.data(), src, w);
    scalar::zoom_in2x2d(picture.data(), src, w, h, stride);
    SCOPED_TRACE(testing::Message() << w << "x" << h << " stride " << stride);
    each_form(zoom_in2x1d_forms, qx_zoom_in2x1d, [&](ZoomIn1dFn* fn) {
      for (std::size_t offset : {0, 16, 32, 48})  // every 16-byte boundary of a 64-byte line
        EXPECT_EQ(run_guarded(
                      prior, [&](std::uint32_t* d) { fn(d, src, w); }, offset),
                  line);
    });
    each_form(zoom_in2x2d_forms, qx_zoom_in2x2d, [&](ZoomIn2dFn* fn) {
      for (std::size_t offset : {0, 16, 32, 48})
        EXPECT_EQ(run_guarded(
                      prior, [&](std::uint32_t* d) { fn(d, src, w, h, stride); }, offset),
                  picture);
    });
  }
}

}  // namespace
}  // namespace qx::test
