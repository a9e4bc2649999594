// qx_sblend family: known values and the properties of the compositing step against the scalar
// form, every (background alpha, foreground weight) pair through every form, and the variants'
// equivalences. Counts, alignments, in-place use and bounds are covered by the catalogue test.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "catalog.h"
#include "frame/pixel.h"

namespace qx::test {
namespace {

using harness::LineCall;
using harness::LineForm;
using Px = std::vector<std::uint32_t>;

const harness::LineKernel& kernel(const std::string& name) {
  return harness::line_kernel_named(name);
}

Px run(const LineForm& form, const Px& bg, const Px& fg, const std::uint8_t* mask = nullptr,
       const std::uint8_t* lut = nullptr, std::uint32_t param = 256) {
  Px dst(bg.size());
  form.run(LineCall{
      dst.data(), {bg.data(), fg.data()}, mask, lut, param, static_cast<std::int32_t>(bg.size())});
  return dst;
}

// Runs fn(form) for every supported form of the kernel (scalar, vector forms, export).
template <class Fn>
void each_form(const std::string& name, Fn fn) {
  for (const LineForm& form : kernel(name).forms) {
    if (!form.supported()) continue;
    SCOPED_TRACE(name + "/" + form.name);
    fn(form);
  }
}

TEST(Sblend, WorkedExamples) {
  struct Row {
    std::uint32_t bg, fg, dst;  // make_px(byte 0, byte 1, byte 2, alpha)
  } const rows[] = {
      {make_px(10, 20, 30, 255), make_px(200, 100, 50, 0), make_px(10, 20, 30, 254)},
      {make_px(10, 20, 30, 1), make_px(200, 100, 50, 0), make_px(10, 20, 30, 0)},
      {make_px(10, 20, 30, 2), make_px(200, 100, 50, 0), make_px(10, 20, 30, 1)},
      {make_px(0, 255, 30, 77), make_px(255, 0, 31, 255), make_px(254, 0, 30, 255)},
      {make_px(0, 255, 30, 0), make_px(255, 0, 31, 128), make_px(254, 0, 30, 128)},
      {make_px(0, 255, 100, 255), make_px(255, 0, 200, 128), make_px(128, 126, 150, 254)},
      {make_px(0, 255, 100, 255), make_px(255, 0, 200, 254), make_px(254, 0, 199, 254)},
  };
  Px bg, fg;  // seven pixels: one group and a three-pixel tail
  for (const Row& r : rows) bg.push_back(r.bg), fg.push_back(r.fg);
  each_form("sblend", [&](const LineForm& form) {
    const Px out = run(form, bg, fg);
    for (std::size_t i = 0; i < std::size(rows); ++i) EXPECT_EQ(out[i], rows[i].dst) << i;
  });
}

// Over a transparent background the output alpha is the effective foreground weight F itself,
// which shows how each variant forms F.
TEST(Sblend, EffectiveWeightOfEachVariant) {
  std::vector<std::uint8_t> identity(256), full(256, 255);
  for (int i = 0; i < 256; ++i) identity[i] = static_cast<std::uint8_t>(i);
  struct Case {
    const char* kernel;
    std::uint8_t mask;
    const std::uint8_t* lut;
    std::uint32_t opacity;
    std::uint32_t (*f)(std::uint32_t a);
  } const cases[] = {
      {"sblend", 0, nullptr, 0, [](std::uint32_t a) { return a; }},
      {"sblend_t", 0, nullptr, 128, [](std::uint32_t a) { return a * 128 / 256; }},  // 255 -> 127
      {"sblend_t", 0, nullptr, 0, [](std::uint32_t) { return 0u; }},
      {"sblend_m", 255, nullptr, 0, [](std::uint32_t a) { return a ? a - 1 : 0; }},
      {"sblend_m", 0, nullptr, 0, [](std::uint32_t) { return 0u; }},
      {"sblend_mt", 255, nullptr, 128, [](std::uint32_t a) { return a * 127 / 256; }},
      {"sblend_mlt", 7, full.data(), 256, [](std::uint32_t a) { return a ? a - 1 : 0; }},
      {"sblend_mlt", 200, identity.data(), 100, [](std::uint32_t a) { return a * 78 / 256; }},
  };
  Px bg(256, make_px(9, 99, 199, 0)), fg(256);
  for (std::uint32_t a = 0; a < 256; ++a) fg[a] = make_px(a, 255 - a, 77, a);
  for (const Case& c : cases) {
    std::vector<std::uint8_t> mask(256, c.mask);
    const Px out = run(kernel(c.kernel).forms.front(), bg, fg, mask.data(), c.lut, c.opacity);
    for (std::uint32_t a = 0; a < 256; ++a)
      EXPECT_EQ(chan(out[a], 3), c.f(a)) << c.kernel << " fg.a " << a << " mask " << +c.mask;
  }
}

// The alpha and colour rules that hold for every background alpha B and weight F = fg.a.
TEST(Sblend, CompositingRules) {
  const LineForm& scalar = kernel("sblend").forms.front();
  for (std::uint32_t b = 0; b < 256; ++b) {
    Px bg(256), fg(256);
    for (std::uint32_t f = 0; f < 256; ++f) {
      bg[f] = make_px(40, 200, 255 - f, b);
      fg[f] = make_px(200, 40, f, f);
    }
    const Px out = run(scalar, bg, fg);
    for (std::uint32_t f = 0; f < 256; ++f) {
      SCOPED_TRACE("B " + std::to_string(b) + " F " + std::to_string(f));
      if (f == 0) {  // the background colour; the alpha drops by one
        EXPECT_EQ(out[f], make_px(40, 200, 255, b ? b - 1 : 0));
      } else if (f == 255 || b == 0) {  // K = 255: fg.x where fg.x <= bg.x, else fg.x - 1
        EXPECT_EQ(out[f], make_px(199, 40, f > 255 - f ? f - 1 : f, f == 255 ? 255 : f));
      }
      if (b == 255) {
        EXPECT_EQ(chan(out[f], 3), f == 255 ? 255u : 254u);
      }
      for (int c = 0; c < 3; ++c) {  // always between the two colours, never past the foreground
        const std::uint32_t lo = std::min(chan(bg[f], c), chan(fg[f], c));
        const std::uint32_t hi = std::max(chan(bg[f], c), chan(fg[f], c));
        EXPECT_TRUE(chan(out[f], c) >= lo && chan(out[f], c) <= hi) << c;
      }
    }
  }
}

// Every (B, F) pair, with colour pairs drawn from 0, 1, 254, 255 in both orders and random ones,
// as long lines through every form.
TEST(Sblend, EveryAlphaPairInEveryForm) {
  static constexpr std::uint32_t kEdge[] = {0, 1, 254, 255};
  harness::Rng rng(5);
  const LineForm& scalar = kernel("sblend").forms.front();
  for (std::uint32_t x = 0; x < 16; ++x) {
    const std::uint32_t u = kEdge[x & 3], v = kEdge[x >> 2];
    Px bg(65536), fg(65536);
    for (std::uint32_t i = 0; i < 65536; ++i) {
      const std::uint32_t r = rng();
      bg[i] = make_px(u, v, r & 0xFF, i >> 8);
      fg[i] = make_px(v, u, r >> 8 & 0xFF, i & 0xFF);
    }
    const Px want = run(scalar, bg, fg);
    each_form("sblend", [&](const LineForm& form) {
      const Px got = run(form, bg, fg);
      for (std::uint32_t i = 0; i < 65536; ++i)
        ASSERT_EQ(got[i], want[i]) << "B " << (i >> 8) << " F " << (i & 0xFF) << " pair " << x;
    });
  }
}

// The variants reduce to one another; checked on random lines in every form.
TEST(Sblend, VariantEquivalences) {
  constexpr std::size_t kN = 1027, kMaskBytes = (kN + 3) / 4 * 4;  // masks pad to whole groups
  harness::Rng rng(11);
  Px bg(kN), fg(kN);
  harness::random_pixels(bg, rng);
  harness::random_pixels(fg, rng);
  std::vector<std::uint8_t> mask(kMaskBytes), identity(256), zero(256, 0);
  harness::random_bytes(mask, rng);
  for (int i = 0; i < 256; ++i) identity[i] = static_cast<std::uint8_t>(i);
  const std::uint8_t* m = mask.data();

  Px hidden(kN);  // weight 0 everywhere: background colour, alpha bg.a - 1 (0 stays 0)
  for (std::size_t i = 0; i < kN; ++i) {
    const std::uint32_t a = chan(bg[i], 3);
    hidden[i] = (bg[i] & 0xFFFFFFu) | (a ? a - 1 : 0) << 24;
  }
  const Px base = run(kernel("sblend").forms.front(), bg, fg);
  const Px masked = run(kernel("sblend_m").forms.front(), bg, fg, m);

  for (std::uint32_t o : {256u, 257u, 1000u, 0xFFFFFFFFu})
    each_form("sblend_t",
              [&](const LineForm& f) { EXPECT_EQ(run(f, bg, fg, m, nullptr, o), base); });
  each_form("sblend_t",
            [&](const LineForm& f) { EXPECT_EQ(run(f, bg, fg, m, nullptr, 0), hidden); });
  each_form("sblend_m", [&](const LineForm& f) {
    const std::vector<std::uint8_t> none(kMaskBytes, 0);
    EXPECT_EQ(run(f, bg, fg, none.data()), hidden);
  });
  each_form("sblend_mt", [&](const LineForm& f) {
    EXPECT_EQ(run(f, bg, fg, m, nullptr, 256), masked);
    EXPECT_EQ(run(f, bg, fg, m, nullptr, 0), hidden);
  });
  for (std::uint32_t o : {0u, 1u, 128u, 255u, 256u, 5000u}) {
    const Px mt = run(kernel("sblend_mt").forms.front(), bg, fg, m, nullptr, o);
    each_form("sblend_mlt", [&](const LineForm& f) {
      EXPECT_EQ(run(f, bg, fg, m, identity.data(), o), mt) << o;
      EXPECT_EQ(run(f, bg, fg, m, zero.data(), o), hidden) << o;
    });
  }
}

// With two tail pixels both take the last foreground pixel; the one before it is not used.
TEST(Sblend, TwoPixelTailUsesTheLastForeground) {
  const LineForm& scalar = kernel("sblend").forms.front();
  for (std::size_t n : {2u, 6u}) {
    Px bg(n, make_px(10, 200, 90, 100)), fg(n, make_px(250, 5, 60, 180));
    fg[n - 1] = make_px(30, 120, 240, 90);
    const Px last = run(scalar, Px{bg[n - 2]}, Px{fg[n - 1]});
    const Px own = run(scalar, Px{bg[n - 2]}, Px{fg[n - 2]});
    ASSERT_NE(last, own);
    each_form("sblend", [&](const LineForm& form) {
      const Px out = run(form, bg, fg);
      EXPECT_EQ(out[n - 2], last[0]) << n;
      EXPECT_EQ(out[n - 1], last[0]) << n;
      if (n == 6) {
        EXPECT_EQ(out[0], run(scalar, Px{bg[0]}, Px{fg[0]})[0]);
      }
    });
  }
}

}  // namespace
}  // namespace qx::test
