// The qx_lblend family: worked values of the arithmetic, the identities that tie the five variants
// together, and the two-pixel tail pairing, each checked in every form through the catalogue.
// (Agreement of the vector forms with the scalar form on random lines is the generic line test.)
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "catalog.h"

namespace qx::test {
namespace {

using harness::LineCall;
using harness::LineKernel;
using Px = std::vector<std::uint32_t>;
using Bytes = std::vector<std::uint8_t>;

Bytes table(std::uint8_t (*entry)(int)) {
  Bytes t(256);
  for (int i = 0; i < 256; ++i) t[i] = entry(i);
  return t;
}
const Bytes kIdentity = table([](int i) { return static_cast<std::uint8_t>(i); });
const Bytes kInvert = table([](int i) { return static_cast<std::uint8_t>(255 - i); });
const Bytes kZero = table([](int) { return std::uint8_t{0}; });

// Runs form `f` of the kernel on whole lines (the mask padded to the next group of four).
Px run(const LineKernel& k, std::size_t f, const Px& bg, const Px& fg, Bytes mask = {},
       const Bytes& lut = kIdentity, std::uint32_t opacity = 256) {
  const auto n = static_cast<std::int32_t>(bg.size());
  mask.resize((bg.size() + 3) / 4 * 4 + 4);
  Px dst(bg.size());
  k.forms[f].run(LineCall{dst.data(), {bg.data(), fg.data()}, mask.data(), lut.data(), opacity, n});
  return dst;
}

// Calls body(kernel, form index) for every supported form of the named kernel.
template <class Body>
void each_form(const std::string& name, Body&& body) {
  const LineKernel& k = harness::line_kernel_named(name);
  for (std::size_t f = 0; f < k.forms.size(); ++f) {
    if (!k.forms[f].supported()) continue;
    SCOPED_TRACE(name + "/" + k.forms[f].name);
    body(k, f);
  }
}

struct Worked {
  const char* kernel;
  std::uint32_t bg, fg;
  std::uint8_t mask;
  const Bytes* lut;
  std::uint32_t opacity;
  std::uint32_t want;
  const char* why;
};

const Worked kWorked[] = {
    {"lblend", 0x80123456, 0x00FFFFFF, 0, &kIdentity, 256, 0x80123456,
     "weight 0 keeps bg, alpha too"},
    {"lblend", 0x00000000, 0xFFFFFFFF, 0, &kIdentity, 256, 0xFEFEFEFE, "opaque white gives 254"},
    {"lblend", 0x01000000, 0xFFFFFFFF, 0, &kIdentity, 256, 0xFFFEFEFE, "alpha saturates"},
    {"lblend", 0x00FFFFFF, 0xFF000000, 0, &kIdentity, 256, 0xFE000000, "bg.c * 1 / 256 is 0"},
    {"lblend", 0x10204060, 0x80C0A000, 0, &kIdentity, 256, 0x50707030, "fg.a 128 adds 64"},
    {"lblend", 0xC8214161, 0xC8214161, 0, &kIdentity, 256, 0xFF204060, "each product truncated"},
    {"lblend", 0x33214161, 0xC8214161, 0, &kIdentity, 256, 0xCF204060, "bg.a leaves colour alone"},
    {"lblend_t", 0x00000000, 0xFFFFFFFF, 0, &kIdentity, 128, 0x7E7E7E7E, "T 128, a 255: w 127"},
    {"lblend_t", 0x80123456, 0xFFFFFFFF, 0, &kIdentity, 1, 0x80123456, "T 1, a 255: w 0"},
    {"lblend_m", 0x00000000, 0xFFFFFFFF, 255, &kIdentity, 256, 0xFDFDFDFD, "m 255, a 255: w 254"},
    {"lblend_m", 0x00808080, 0xFFFFFFFF, 255, &kIdentity, 256, 0xFDFEFEFE, "bg weight 2"},
    {"lblend_m", 0x80123456, 0xFFFFFFFF, 0, &kIdentity, 256, 0x80123456, "m 0 keeps bg"},
    {"lblend_mt", 0x00000000, 0xC8FFFFFF, 255, &kIdentity, 128, 0x4D626262, "m 255 T 128: 127"},
    {"lblend_mlt", 0x00000000, 0xFFFFFFFF, 0, &kInvert, 256, 0xFDFDFDFD, "lut[0] 255: w 254"},
    {"lblend_mlt", 0x00000000, 0xFFFFFFFF, 0, &kInvert, 128, 0x7D7D7D7D, "w 127, then a' 126"},
    {"lblend_mlt", 0x80123456, 0xFFFFFFFF, 200, &kZero, 256, 0x80123456, "zero table keeps bg"},
};

TEST(Lblend, WorkedValuesInEveryForm) {
  for (const Worked& c : kWorked) {
    each_form(c.kernel, [&](const LineKernel& k, std::size_t f) {
      // Five pixels: one vector group and a one-pixel tail.
      const Px got = run(k, f, Px(5, c.bg), Px(5, c.fg), Bytes(5, c.mask), *c.lut, c.opacity);
      for (std::uint32_t px : got) EXPECT_EQ(px, c.want) << std::hex << px << " " << c.why;
    });
  }
}

// Random lines of a body and a tail, with a ramp of mask bytes covering every value.
struct Lines {
  Px bg, fg;
  Bytes mask;
};
Lines random_lines(std::size_t n, std::uint32_t seed) {
  harness::Rng rng(seed);
  Lines l{Px(n), Px(n), Bytes(n)};
  harness::random_pixels(l.bg, rng);
  harness::random_pixels(l.fg, rng);
  harness::random_bytes(l.mask, rng);
  return l;
}

TEST(Lblend, VariantsReduceToEachOther) {
  const Lines l = random_lines(1923, 7);
  const LineKernel& base = harness::line_kernel_named("lblend");
  const LineKernel& t = harness::line_kernel_named("lblend_t");
  const LineKernel& m = harness::line_kernel_named("lblend_m");
  const LineKernel& mt = harness::line_kernel_named("lblend_mt");
  const LineKernel& mlt = harness::line_kernel_named("lblend_mlt");
  const Bytes no_mask(l.bg.size(), 0);
  for (std::size_t f = 0; f < base.forms.size(); ++f) {
    if (!base.forms[f].supported()) continue;
    SCOPED_TRACE(base.forms[f].name);
    const Px plain = run(base, f, l.bg, l.fg);
    const Px masked = run(m, f, l.bg, l.fg, l.mask);
    for (std::uint32_t full : {256u, 257u, 0xFFFFFFFFu}) {  // opacity clamps to 256
      EXPECT_EQ(run(t, f, l.bg, l.fg, {}, kIdentity, full), plain) << full;
      EXPECT_EQ(run(mt, f, l.bg, l.fg, l.mask, kIdentity, full), masked) << full;
    }
    for (std::uint32_t o : {0u, 1u, 128u, 255u, 256u, 0x80000000u})  // identity table
      EXPECT_EQ(run(mlt, f, l.bg, l.fg, l.mask, kIdentity, o),
                run(mt, f, l.bg, l.fg, l.mask, kIdentity, o))
          << o;
    // Every way to a zero weight gives the background exactly.
    EXPECT_EQ(run(t, f, l.bg, l.fg, {}, kIdentity, 0), l.bg);
    EXPECT_EQ(run(m, f, l.bg, l.fg, no_mask), l.bg);
    EXPECT_EQ(run(mt, f, l.bg, l.fg, l.mask, kIdentity, 0), l.bg);
    EXPECT_EQ(run(mlt, f, l.bg, l.fg, l.mask, kIdentity, 0), l.bg);
    EXPECT_EQ(run(mlt, f, l.bg, l.fg, l.mask, kZero, 256), l.bg);
  }
}

// With count % 4 == 2 both tail pixels are blended with the last foreground pixel (each with its
// own background and mask byte); every other pixel with its own. The reference for each pixel is
// a one-pixel call of the same form on the pixels it must pair.
TEST(Lblend, TwoPixelTailPairsWithTheLastForeground) {
  for (const char* name : {"lblend", "lblend_t", "lblend_m", "lblend_mt", "lblend_mlt"}) {
    each_form(name, [&](const LineKernel& k, std::size_t f) {
      for (std::size_t n : {2u, 6u}) {
        Lines l = random_lines(n, 11 + static_cast<std::uint32_t>(n));
        l.fg[n - 2] = 0x80FF00FF;  // the last two foreground pixels differ, both half opaque
        l.fg[n - 1] = 0xC000FF00;
        l.mask[n - 2] = 100;  // weights well inside 1..255 whichever variant
        l.mask[n - 1] = 60;
        const Px got = run(k, f, l.bg, l.fg, l.mask, kInvert, 200);
        for (std::size_t i = 0; i < n; ++i) {
          const std::size_t j = i == n - 2 ? n - 1 : i;
          const Px one = run(k, f, {l.bg[i]}, {l.fg[j]}, {l.mask[i]}, kInvert, 200);
          EXPECT_EQ(got[i], one[0]) << "count " << n << " pixel " << i;
        }
        EXPECT_NE(got[n - 2],
                  run(k, f, {l.bg[n - 2]}, {l.fg[n - 2]}, {l.mask[n - 2]}, kInvert, 200)[0]);
      }
    });
  }
}

}  // namespace
}  // namespace qx::test
