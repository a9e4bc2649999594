// The three blend families (qx_blend, qx_lblend, qx_sblend): worked values of each arithmetic, the
// identities that tie the five variants of a family together and the two-pixel tail pairing, in
// every form. (Every form against the scalar form on random lines: line_forms_test.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalog.h"
#include "frame/pixel.h"

namespace qx::test {
namespace {

using harness::LineForm;
using Px = std::vector<std::uint32_t>;
using Bytes = std::vector<std::uint8_t>;

Bytes table(int (*entry)(int)) {
  Bytes t(256);
  for (int i = 0; i < 256; ++i) t[i] = static_cast<std::uint8_t>(entry(i));
  return t;
}
const Bytes kIdentity = table([](int i) { return i; });
const Bytes kInvert = table([](int i) { return 255 - i; });
const Bytes kZero = table([](int) { return 0; });

// One call on whole lines; the mask is padded to whole groups of four.
Px run(const LineForm& form, const Px& bg, const Px& fg, Bytes mask = {},
       const Bytes& lut = kIdentity, std::uint32_t opacity = 256) {
  mask.resize((bg.size() + 3) / 4 * 4 + 4);
  Px dst(bg.size());
  form.run({dst.data(),
            {bg.data(), fg.data()},
            mask.data(),
            lut.data(),
            opacity,
            static_cast<std::int32_t>(bg.size())});
  return dst;
}
const LineForm& form_of(const std::string& kernel, std::size_t f) {
  return harness::line_kernel_named(kernel).forms[f];
}

// ---- worked values, every form (five pixels: a vector group and a one-pixel tail) ----

struct Worked {
  const char* kernel;
  std::uint32_t bg, fg;
  std::uint8_t mask;
  const Bytes* lut;
  std::uint32_t opacity, want;
};
constexpr std::uint32_t grey(std::uint32_t c, std::uint32_t a) { return make_px(c, c, c, a); }
constexpr auto P = make_px;

const Worked kWorked[] = {
    // Premultiplied over at 1/256: a full mask is not the identity.
    {"blend_m", grey(0, 255), grey(255, 255), 255, &kIdentity, 256, grey(253, 254)},
    // Linear mix, additive alpha.
    {"lblend", 0x80123456, 0x00FFFFFF, 0, &kIdentity, 256, 0x80123456},      // weight 0: bg exactly
    {"lblend", 0x00000000, 0xFFFFFFFF, 0, &kIdentity, 256, 0xFEFEFEFE},      // opaque white: 254
    {"lblend", 0x01000000, 0xFFFFFFFF, 0, &kIdentity, 256, 0xFFFEFEFE},      // alpha saturates
    {"lblend", 0x00FFFFFF, 0xFF000000, 0, &kIdentity, 256, 0xFE000000},      // bg.c * 1 / 256 = 0
    {"lblend", 0x10204060, 0x80C0A000, 0, &kIdentity, 256, 0x50707030},      // fg.a 128 adds 64
    {"lblend", 0x33214161, 0xC8214161, 0, &kIdentity, 256, 0xCF204060},      // bg.a leaves colour
    {"lblend_t", 0x00000000, 0xFFFFFFFF, 0, &kIdentity, 128, 0x7E7E7E7E},    // w 127
    {"lblend_m", 0x00808080, 0xFFFFFFFF, 255, &kIdentity, 256, 0xFDFEFEFE},  // w 254, bg 2/256
    {"lblend_mt", 0x00000000, 0xC8FFFFFF, 255, &kIdentity, 128, 0x4D626262},  // w 127 then 99
    {"lblend_mlt", 0x00000000, 0xFFFFFFFF, 0, &kInvert, 128, 0x7D7D7D7D},     // lut[0] 255: 127
    // Straight-alpha compositing (bytes 0, 1, 2, alpha).
    {"sblend", P(10, 20, 30, 255), P(200, 100, 50, 0), 0, &kIdentity, 256, P(10, 20, 30, 254)},
    {"sblend", P(10, 20, 30, 1), P(200, 100, 50, 0), 0, &kIdentity, 256, P(10, 20, 30, 0)},
    {"sblend", P(10, 20, 30, 2), P(200, 100, 50, 0), 0, &kIdentity, 256, P(10, 20, 30, 1)},
    {"sblend", P(0, 255, 30, 77), P(255, 0, 31, 255), 0, &kIdentity, 256, P(254, 0, 30, 255)},
    {"sblend", P(0, 255, 30, 0), P(255, 0, 31, 128), 0, &kIdentity, 256, P(254, 0, 30, 128)},
    {"sblend", P(0, 255, 100, 255), P(255, 0, 200, 128), 0, &kIdentity, 256, P(128, 126, 150, 254)},
    {"sblend", P(0, 255, 100, 255), P(255, 0, 200, 254), 0, &kIdentity, 256, P(254, 0, 199, 254)},
    {"sblend_t", grey(0, 255), grey(255, 255), 0, &kIdentity, 128, grey(126, 254)},  // F 127
};

TEST(Families, WorkedValuesInEveryForm) {
  for (const Worked& w : kWorked) {
    for (const LineForm& form : harness::line_kernel_named(w.kernel).forms) {
      if (!form.supported()) continue;
      const Px got = run(form, Px(5, w.bg), Px(5, w.fg), Bytes(5, w.mask), *w.lut, w.opacity);
      for (std::uint32_t px : got)
        EXPECT_EQ(px, w.want) << w.kernel << "/" << form.name << " bg " << std::hex << w.bg;
    }
  }
}

// qx_blend's 1/256 arithmetic by foreground and background alpha, for the colour pairs (fg over
// bg) 255/255, 255/0, 0/255 and 200/100: {fg.a, bg.a, dst.a, the four dst colours}.
TEST(Families, BlendByAlpha) {
  const std::uint32_t rows[][7] = {
      {0, 0, 0, 0, 0, 0, 0},
      {0, 255, 254, 254, 0, 254, 99},
      {1, 255, 253, 253, 0, 253, 99},
      {128, 128, 190, 190, 127, 63, 125},
      {128, 255, 254, 254, 127, 127, 149},
      {254, 255, 254, 254, 253, 1, 198},
      {255, 0, 254, 254, 254, 0, 199},
      {255, 255, 254, 254, 254, 0, 199},
  };
  const std::uint32_t colours[4][2] = {{255, 255}, {255, 0}, {0, 255}, {200, 100}};
  for (const auto& r : rows) {
    for (int i = 0; i < 4; ++i) {
      const Px out =
          run(form_of("blend", 0), {grey(colours[i][1], r[1])}, {grey(colours[i][0], r[0])});
      EXPECT_EQ(out[0], grey(r[3 + i], r[2])) << "fg.a " << r[0] << " bg.a " << r[1] << " " << i;
    }
  }
}

// qx_blend's weight under opacity T and mask m, fg colour 200 over bg colour 100:
// {m, T, fg.a, colour and alpha over bg.a 255, colour and alpha over bg.a 0}. m = 256 means no
// mask (qx_blend_t), otherwise qx_blend_mt.
TEST(Families, BlendWeightByOpacityAndMask) {
  const std::uint32_t rows[][7] = {
      {256, 0, 255, 99, 254, 0, 0},        {256, 1, 255, 99, 254, 0, 0},
      {256, 128, 255, 149, 253, 99, 126},  {256, 128, 128, 124, 253, 50, 63},
      {256, 255, 255, 198, 254, 198, 253}, {256, 256, 128, 149, 254, 100, 127},
      {256, 300, 255, 199, 254, 199, 254}, {256, 0xFFFFFFFF, 255, 199, 254, 199, 254},
      {1, 256, 255, 99, 254, 0, 0},        {128, 256, 255, 149, 253, 99, 126},
      {255, 256, 255, 198, 254, 198, 253}, {128, 128, 255, 124, 253, 49, 62},
      {255, 256, 128, 149, 253, 99, 126},  {255, 128, 255, 148, 253, 98, 125},
  };
  for (const auto& r : rows) {
    const char* kernel = r[0] == 256 ? "blend_t" : "blend_mt";
    const Bytes mask(1, static_cast<std::uint8_t>(r[0]));
    for (int bg_opaque = 0; bg_opaque < 2; ++bg_opaque) {
      const Px out = run(form_of(kernel, 0), {grey(100, bg_opaque ? 255 : 0)}, {grey(200, r[2])},
                         mask, kIdentity, r[1]);
      EXPECT_EQ(out[0], grey(r[bg_opaque ? 3 : 5], r[bg_opaque ? 4 : 6]))
          << kernel << " m " << r[0] << " T " << r[1] << " fg.a " << r[2];
    }
  }
}

// qx_sblend on every (background alpha B, foreground weight F) pair: the scalar form obeys the
// compositing rules, and every form gives its bytes, with colour pairs drawn from 0, 1, 254, 255
// in both orders and one random channel.
TEST(Families, SblendEveryAlphaPair) {
  static constexpr std::uint32_t kEdge[] = {0, 1, 254, 255};
  harness::Rng rng(5);
  for (std::uint32_t x = 0; x < 16; ++x) {
    const std::uint32_t u = kEdge[x & 3], v = kEdge[x >> 2];
    Px bg(65536), fg(65536);
    for (std::uint32_t i = 0; i < 65536; ++i) {
      bg[i] = make_px(u, v, rng() & 0xFF, i >> 8);
      fg[i] = make_px(v, u, rng() & 0xFF, i & 0xFF);
    }
    const Px want = run(form_of("sblend", 0), bg, fg);
    for (std::uint32_t i = 0; i < 65536; ++i) {
      const std::uint32_t b = i >> 8, f = i & 0xFF, a = chan(want[i], 3);
      if (f == 0) {  // the background colour, alpha one lower
        ASSERT_EQ(want[i], (bg[i] & 0xFFFFFFu) | (b ? b - 1 : 0) << 24) << i;
      }
      if (b == 255) {
        ASSERT_EQ(a, f == 255 ? 255u : 254u) << i;
      }
      for (int c = 0; c < 3; ++c) {
        const std::uint32_t p = chan(bg[i], c), q = chan(fg[i], c), o = chan(want[i], c);
        ASSERT_TRUE(o >= std::min(p, q) && o <= std::max(p, q)) << i;  // never past either
        if (f == 255 || (b == 0 && f > 0)) {                           // K = 255
          ASSERT_EQ(o, q > p ? q - 1 : q) << i;
        }
      }
    }
    for (const LineForm& form : harness::line_kernel_named("sblend").forms) {
      if (!form.supported()) continue;
      const Px got = run(form, bg, fg);
      for (std::uint32_t i = 0; i < 65536; ++i)
        ASSERT_EQ(got[i], want[i]) << form.name << " B " << (i >> 8) << " F " << (i & 0xFF);
    }
  }
}

// ---- the variants of each family, in every form ----

struct FamilyForm {
  std::string family;
  std::size_t form;
};
void PrintTo(const FamilyForm& f, std::ostream* os) { *os << f.family << "/" << f.form; }

class Variants : public testing::TestWithParam<FamilyForm> {
 protected:
  const LineForm& form(const char* suffix) const {
    return form_of(GetParam().family + suffix, GetParam().form);
  }
};

TEST_P(Variants, ReduceToOneAnother) {
  if (!form("").supported()) GTEST_SKIP();
  constexpr std::size_t n = 1027;  // a vector body and a tail of 3
  harness::Rng rng(11);
  Px bg(n), fg(n);
  Bytes mask(n);
  harness::random_pixels(bg, rng);
  harness::random_pixels(fg, rng);
  harness::random_bytes(mask, rng);
  const Bytes none(n, 0), full(n, 255);
  Px clear = fg;  // fg.a = 0 gives weight 0: what every way to a zero weight must give
  for (std::uint32_t& p : clear) p &= 0xFFFFFFu;
  const Px hidden = run(form(""), bg, clear);

  const Px base = run(form(""), bg, fg);
  const Px masked = run(form("_m"), bg, fg, mask);
  for (std::uint32_t full_opacity : {256u, 257u, 1000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(run(form("_t"), bg, fg, {}, kIdentity, full_opacity), base) << full_opacity;
    EXPECT_EQ(run(form("_mt"), bg, fg, mask, kIdentity, full_opacity), masked) << full_opacity;
  }
  for (std::uint32_t t : {0u, 1u, 100u, 255u, 256u}) {
    const Px mt = run(form("_mt"), bg, fg, mask, kIdentity, t);
    EXPECT_EQ(run(form("_mlt"), bg, fg, mask, kIdentity, t), mt) << t;
    EXPECT_EQ(run(form("_mlt"), bg, fg, mask, kZero, t), hidden) << t;
    EXPECT_EQ(run(form("_mlt"), bg, fg, none, kInvert, t),
              run(form("_mt"), bg, fg, full, kIdentity, t));
  }
  EXPECT_EQ(run(form("_t"), bg, fg, {}, kIdentity, 0), hidden);
  EXPECT_EQ(run(form("_m"), bg, fg, none), hidden);
  EXPECT_EQ(run(form("_mt"), bg, fg, mask, kIdentity, 0), hidden);
}

// With count % 4 == 2 both tail pixels take the last foreground pixel, each with its own
// background and mask byte; the reference for each pixel is a one-pixel call on what it pairs.
TEST_P(Variants, TwoPixelTailTakesTheLastForeground) {
  if (!form("").supported()) GTEST_SKIP();
  for (const char* suffix : {"", "_t", "_m", "_mt", "_mlt"}) {
    for (std::size_t n : {2u, 6u}) {
      harness::Rng rng(static_cast<std::uint32_t>(n));
      Px bg(n), fg(n);
      harness::random_pixels(bg, rng);
      harness::random_pixels(fg, rng);
      fg[n - 2] = 0x80FF00FF;  // the last two foreground pixels differ
      fg[n - 1] = 0xC000FF00;
      const Bytes mask = {100, 60, 100, 60, 100, 60};
      const Px got = run(form(suffix), bg, fg, mask, kInvert, 200);
      for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = i == n - 2 ? n - 1 : i;
        EXPECT_EQ(got[i], run(form(suffix), {bg[i]}, {fg[j]}, {mask[i]}, kInvert, 200)[0])
            << suffix << " count " << n << " pixel " << i;
      }
      EXPECT_NE(got[n - 2],
                run(form(suffix), {bg[n - 2]}, {fg[n - 2]}, {mask[n - 2]}, kInvert, 200)[0]);
    }
  }
}

std::vector<FamilyForm> family_forms() {
  std::vector<FamilyForm> v;
  for (const char* family : {"blend", "lblend", "sblend"})
    for (std::size_t f = 0; f < harness::line_kernel_named(family).forms.size(); ++f)
      v.push_back({family, f});
  return v;
}
INSTANTIATE_TEST_SUITE_P(All, Variants, testing::ValuesIn(family_forms()), [](const auto& info) {
  return info.param.family + "_" + form_of(info.param.family, info.param.form).name;
});

}  // namespace
}  // namespace qx::test
