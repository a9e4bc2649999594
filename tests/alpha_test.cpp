// Worked values of qx_alpha and qx_mask, in every form and through the export. (Agreement of the
// forms on random lines is proved for every line kernel in line_forms_test.cpp.)
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "catalog.h"

namespace qx::test {
namespace {

using harness::LineCall;

// Runs every supported form of a catalogue kernel on the same call; returns each form's output.
template <class Check>
void for_each_form(const char* kernel, LineCall call, std::size_t n, Check&& check) {
  for (const harness::LineForm& form : harness::line_kernel_named(kernel).forms) {
    if (!form.supported()) continue;
    std::vector<std::uint32_t> out(n, 0xDEADBEEFu);
    call.dst = out.data();
    form.run(call);
    check(form.name, out);
  }
}

TEST(Alpha, EveryByteTakesTheAlpha) {
  const struct {
    std::uint32_t in, out;
  } cases[] = {
      {0x80112233u, 0x80808080u},  // memory bytes 33 22 11 80 -> 80 80 80 80
      {0x00FFFFFFu, 0x00000000u},  // transparent: black, transparent
      {0xFF000000u, 0xFFFFFFFFu},  // opaque: white, opaque
      {0x01FE00FFu, 0x01010101u}, {0x7F808080u, 0x7F7F7F7Fu}, {0xFEFFFFFFu, 0xFEFEFEFEu},
  };  // six pixels: one group and a tail of two, each pixel with its own result
  std::vector<std::uint32_t> src;
  for (auto c : cases) src.push_back(c.in);
  const std::size_t n = src.size();
  for_each_form("alpha", LineCall{nullptr, {src.data(), nullptr}, nullptr, nullptr, 0, int(n)}, n,
                [&](const std::string& form, const std::vector<std::uint32_t>& out) {
                  for (std::size_t i = 0; i < n; ++i)
                    EXPECT_EQ(out[i], cases[i].out) << form << " pixel " << i;
                });
}

TEST(Mask, ScalesAlphaByTheMaskOver256AndKeepsColour) {
  const struct {
    std::uint8_t a, m, out;
  } cases[] = {
      {255, 255, 254},  // 255/256, not 1
      {255, 128, 127}, {255, 0, 0}, {0, 255, 0}, {128, 1, 0}, {128, 2, 1}, {200, 100, 78},
  };  // seven pixels: one group and a tail of three
  std::vector<std::uint32_t> src;
  std::vector<std::uint8_t> mask;
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    src.push_back(std::uint32_t{cases[i].a} << 24 | (0x00A1B2C3u + 0x0F1F2Fu * i));
    mask.push_back(cases[i].m);
  }
  mask.resize(8, 0xFF);  // readable up to the next multiple of four
  const std::size_t n = std::size(cases);
  for_each_form("mask", LineCall{nullptr, {src.data(), nullptr}, mask.data(), nullptr, 0, int(n)},
                n, [&](const std::string& form, const std::vector<std::uint32_t>& out) {
                  for (std::size_t i = 0; i < n; ++i) {
                    EXPECT_EQ(out[i] >> 24, cases[i].out) << form << " pixel " << i;
                    EXPECT_EQ(out[i] & 0xFFFFFFu, src[i] & 0xFFFFFFu) << form << " pixel " << i;
                  }
                });
}

}  // namespace
}  // namespace qx::test
