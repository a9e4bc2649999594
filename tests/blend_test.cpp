// qx_blend family: the values its 1/256 arithmetic must give, the equivalences between the five
// variants, and the tail pairing. (Every form against the scalar form: line_forms_test.)
#include "blend/blend.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "catalog.h"
#include "frame/pixel.h"

namespace qx::test {
namespace {

constexpr std::uint32_t grey(std::uint32_t c, std::uint32_t a) { return make_px(c, c, c, a); }

// One pixel through a scalar variant: returns {colour byte, alpha byte} (the three colour bytes
// are checked equal).
struct Out {
  std::uint32_t colour, alpha;
  bool operator==(const Out&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Out& o) {
  return os << "{colour " << o.colour << ", alpha " << o.alpha << "}";
}
template <class F>
Out one(F&& f) {
  std::uint32_t px = 0;
  f(&px);
  EXPECT_EQ(chan(px, 0), chan(px, 1));
  EXPECT_EQ(chan(px, 0), chan(px, 2));
  return {chan(px, 0), chan(px, 3)};
}

TEST(Blend, ValuesByAlpha) {
  // fg.a, bg.a, then {colour, alpha} for: fg 255 over bg 255, fg 255 over bg 0, fg 0 over bg 255,
  // fg 200 over bg 100 (colours; the alphas are the row's).
  struct Row {
    std::uint32_t fa, ba, alpha, c255_255, c255_0, c0_255, c200_100;
  } const rows[] = {
      {0, 0, 0, 0, 0, 0, 0},
      {0, 255, 254, 254, 0, 254, 99},
      {1, 255, 253, 253, 0, 253, 99},
      {128, 128, 190, 190, 127, 63, 125},
      {128, 255, 254, 254, 127, 127, 149},
      {254, 255, 254, 254, 253, 1, 198},
      {255, 0, 254, 254, 254, 0, 199},
      {255, 255, 254, 254, 254, 0, 199},
  };
  for (const Row& r : rows) {
    const std::pair<std::uint32_t, std::uint32_t> colours[] = {
        {255, 255}, {255, 0}, {0, 255}, {200, 100}};
    const std::uint32_t expect[] = {r.c255_255, r.c255_0, r.c0_255, r.c200_100};
    for (int i = 0; i < 4; ++i) {
      const std::uint32_t fg = grey(colours[i].first, r.fa), bg = grey(colours[i].second, r.ba);
      EXPECT_EQ(one([&](std::uint32_t* d) { scalar::blend(d, &bg, &fg, 1); }),
                (Out{expect[i], r.alpha}))
          << "fg.a " << r.fa << " bg.a " << r.ba << " colours " << colours[i].first << "/"
          << colours[i].second;
    }
  }
}

// fg colour 200 over bg colour 100, for bg.a 255 and bg.a 0.
struct WeightRow {
  std::uint32_t mask, opacity, fa;
  Out over_opaque, over_clear;
};

TEST(Blend, ValuesByOpacity) {
  const WeightRow rows[] = {
      {0, 0, 255, {99, 254}, {0, 0}},        {0, 0, 0, {99, 254}, {0, 0}},
      {0, 1, 255, {99, 254}, {0, 0}},        {0, 128, 255, {149, 253}, {99, 126}},
      {0, 128, 128, {124, 253}, {50, 63}},   {0, 255, 255, {198, 254}, {198, 253}},
      {0, 256, 255, {199, 254}, {199, 254}}, {0, 256, 128, {149, 254}, {100, 127}},
      {0, 300, 255, {199, 254}, {199, 254}}, {0, 0xFFFFFFFF, 255, {199, 254}, {199, 254}},
  };
  for (const WeightRow& r : rows) {
    const std::uint32_t fg = grey(200, r.fa);
    for (const auto& [ba, want] : {std::pair{255u, r.over_opaque}, std::pair{0u, r.over_clear}}) {
      const std::uint32_t bg = grey(100, ba);
      EXPECT_EQ(one([&](std::uint32_t* d) { scalar::blend_t(d, &bg, &fg, 1, r.opacity); }), want)
          << "opacity " << r.opacity << " fg.a " << r.fa << " bg.a " << ba;
    }
  }
}

TEST(Blend, ValuesByMask) {
  const WeightRow rows[] = {
      {0, 256, 255, {99, 254}, {0, 0}},        {1, 256, 255, {99, 254}, {0, 0}},
      {128, 256, 255, {149, 253}, {99, 126}},  {128, 128, 255, {124, 253}, {49, 62}},
      {255, 256, 255, {198, 254}, {198, 253}}, {255, 256, 128, {149, 253}, {99, 126}},
      {255, 128, 255, {148, 253}, {98, 125}},
  };
  for (const WeightRow& r : rows) {
    const std::uint32_t fg = grey(200, r.fa);
    const std::uint8_t mask[4] = {static_cast<std::uint8_t>(r.mask)};
    std::uint8_t lut[256];
    std::iota(lut, lut + 256, std::uint8_t{0});
    for (const auto& [ba, want] : {std::pair{255u, r.over_opaque}, std::pair{0u, r.over_clear}}) {
      const std::uint32_t bg = grey(100, ba);
      EXPECT_EQ(one([&](std::uint32_t* d) { scalar::blend_mt(d, &bg, &fg, 1, mask, r.opacity); }),
                want)
          << "mask " << r.mask << " opacity " << r.opacity << " fg.a " << r.fa << " bg.a " << ba;
      EXPECT_EQ(
          one([&](std::uint32_t* d) { scalar::blend_mlt(d, &bg, &fg, 1, mask, lut, r.opacity); }),
          want);
      if (r.opacity == 256) {
        EXPECT_EQ(one([&](std::uint32_t* d) { scalar::blend_m(d, &bg, &fg, 1, mask); }), want);
      }
    }
  }
  // A full mask is not the identity: opaque white over opaque black gives 253, alpha 254.
  const std::uint32_t fg = grey(255, 255), bg = grey(0, 255);
  const std::uint8_t full[4] = {255, 255, 255, 255};
  EXPECT_EQ(one([&](std::uint32_t* d) { scalar::blend_m(d, &bg, &fg, 1, full); }), (Out{253, 254}));
}

// Variants that must agree on any lines, checked for every form of each (through the catalogue).
class BlendEquivalence : public testing::TestWithParam<std::size_t> {};

TEST_P(BlendEquivalence, VariantsAgree) {
  if (!harness::line_kernel_named("blend").forms[GetParam()].supported()) GTEST_SKIP();
  harness::Rng rng(7);
  constexpr std::int32_t n = 203;  // body and a tail of 3
  std::vector<std::uint32_t> bg(n), fg(n);
  std::vector<std::uint8_t> mask(n + 1), identity(256), zeros(256, 0), inverse(256);
  harness::random_pixels(bg, rng);
  harness::random_pixels(fg, rng);
  harness::random_bytes(mask, rng);
  std::iota(identity.begin(), identity.end(), std::uint8_t{0});
  for (int k = 0; k < 256; ++k) inverse[k] = static_cast<std::uint8_t>(255 - k);
  const std::vector<std::uint8_t> zero_mask(n + 1, 0), full_mask(n + 1, 255);

  auto run = [&](const char* name, const std::uint8_t* m, const std::uint8_t* lut,
                 std::uint32_t param) {
    const harness::LineKernel& k = harness::line_kernel_named(name);
    const harness::LineForm& form = k.forms[std::min(GetParam(), k.forms.size() - 1)];
    std::vector<std::uint32_t> out(n);
    if (form.supported())
      form.run({out.data(), {bg.data(), fg.data()}, m, lut, param, n});
    else
      k.forms[0].run({out.data(), {bg.data(), fg.data()}, m, lut, param, n});
    return out;
  };
  std::vector<std::uint32_t> bg_only(n);  // opacity 0: bg premultiplied by its own alpha, 1/256
  for (int i = 0; i < n; ++i) {
    const std::uint32_t a = chan(bg[i], 3);
    bg_only[i] = make_px(chan(bg[i], 0) * a / 256, chan(bg[i], 1) * a / 256,
                         chan(bg[i], 2) * a / 256, 255 * a / 256);
  }

  const auto base = run("blend", nullptr, nullptr, 0);
  for (std::uint32_t full : {256u, 257u, 1000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(run("blend_t", nullptr, nullptr, full), base) << full;
    EXPECT_EQ(run("blend_mt", mask.data(), nullptr, full), run("blend_m", mask.data(), nullptr, 0));
  }
  for (std::uint32_t t : {0u, 1u, 100u, 255u, 256u}) {
    EXPECT_EQ(run("blend_mlt", mask.data(), identity.data(), t),
              run("blend_mt", mask.data(), nullptr, t));
    EXPECT_EQ(run("blend_mlt", mask.data(), zeros.data(), t), bg_only);
    EXPECT_EQ(run("blend_mlt", zero_mask.data(), inverse.data(), t),
              run("blend_mt", full_mask.data(), nullptr, t));
  }
  EXPECT_EQ(run("blend_t", nullptr, nullptr, 0), bg_only);
  EXPECT_EQ(run("blend_mt", mask.data(), nullptr, 0), bg_only);
  EXPECT_EQ(run("blend_m", zero_mask.data(), nullptr, 0), bg_only);
  for (std::uint32_t px : base)
    for (int k = 0; k < 4; ++k) ASSERT_LE(chan(px, k), 254u);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, BlendEquivalence,
    testing::Range<std::size_t>(0, harness::line_kernel_named("blend").forms.size()),
    [](const auto& info) { return harness::line_kernel_named("blend").forms[info.param].name; });

TEST(Blend, RemainderOfTwoBlendsBothTailPixelsWithTheLastForeground) {
  for (const harness::LineForm& form : harness::line_kernel_named("blend").forms) {
    if (!form.supported()) continue;
    for (std::int32_t n : {2, 6}) {
      std::vector<std::uint32_t> bg(n, grey(100, 255)), fg(n, grey(0, 0)), out(n);
      fg[n - 2] = grey(10, 255);  // never read
      fg[n - 1] = grey(200, 128);
      form.run({out.data(), {bg.data(), fg.data()}, nullptr, nullptr, 0, n});
      std::uint32_t expect = 0;
      scalar::blend(&expect, &bg[n - 1], &fg[n - 1], 1);
      EXPECT_EQ(out[n - 2], expect) << form.name << " count " << n;
      EXPECT_EQ(out[n - 1], expect) << form.name << " count " << n;
    }
  }
}

}  // namespace
}  // namespace qx::test
