// Worked values of the scalar forms of qx_alpha and qx_mask. The other forms and the exports are
// held to these scalar forms on random lines in line_forms_test.cpp.
#include "alpha/alpha.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace qx::test {
namespace {

TEST(Alpha, EveryByteTakesTheAlpha) {
  // Six pixels: a group of four and a tail of two. The first is memory bytes 33 22 11 80.
  const std::array<std::uint32_t, 6> in = {0x80112233u, 0x00FFFFFFu, 0xFF000000u,
                                           0x01FE00FFu, 0x7F808080u, 0xFEFFFFFFu};
  const std::array<std::uint32_t, 6> want = {0x80808080u, 0x00000000u, 0xFFFFFFFFu,
                                             0x01010101u, 0x7F7F7F7Fu, 0xFEFEFEFEu};
  std::array<std::uint32_t, 6> out{};
  scalar::alpha(out.data(), in.data(), 6);
  EXPECT_EQ(out, want);
}

TEST(Mask, ScalesAlphaByTheMaskOver256AndKeepsColour) {
  const struct {
    std::uint8_t a, m, out;
  } cases[] = {
      {255, 255, 254},  // 255/256 of the alpha, not all of it
      {255, 128, 127}, {255, 0, 0}, {0, 255, 0}, {128, 1, 0}, {128, 2, 1}, {200, 100, 78},
  };  // seven pixels: a group of four and a tail of three
  std::array<std::uint32_t, 7> src{}, out{};
  std::array<std::uint8_t, 8> mask{};  // readable up to the next multiple of four
  for (std::size_t i = 0; i < src.size(); ++i) {
    src[i] = std::uint32_t{cases[i].a} << 24 | (0x00A1B2C3u + 0x0F1F2Fu * i);
    mask[i] = cases[i].m;
  }
  scalar::mask(out.data(), src.data(), mask.data(), 7);
  for (std::size_t i = 0; i < src.size(); ++i) {
    EXPECT_EQ(out[i] >> 24, cases[i].out) << "pixel " << i;
    EXPECT_EQ(out[i] & 0xFFFFFFu, src[i] & 0xFFFFFFu) << "pixel " << i;
  }
}

}  // namespace
}  // namespace qx::test
