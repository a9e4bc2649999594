// Colour-format conversion: worked colours and the round-trip loss, every colour value through
// every form of both conversions, and v210 unpacking (sample order, exact extent of reads and
// writes, every form against the scalar form). Agreement of the conversion forms across counts,
// alignments, in-place use and page ends is proved for every line kernel in line_forms_test.cpp.
#include "convert/convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "catalog.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

TEST(Conversions, WorkedColoursKeepAlpha) {
  using Rows = std::vector<std::pair<std::uint32_t, std::uint32_t>>;  // colour in, colour out
  // 0xRRGGBB -> 0xVVYYUU. Every sum floors, so white lands one step below 128/235/128.
  const Rows to_yuv = {{0x000000, 0x801080}, {0xFFFFFF, 0x7FEA7F}, {0xFF0000, 0xEF515A},
                       {0x00FF00, 0x229035}, {0x0000FF, 0x6D28EF}, {0x808080, 0x7F7D80}};
  // 0xVVYYUU -> 0xRRGGBB. The last row shows green's two separately floored parts (one flooring of
  // the whole sum would give 0x7D).
  const Rows to_rgb = {{0x801080, 0x000000},
                       {0x80EB80, 0xFEFEFE},
                       {0x807E80, 0x808080},
                       {0x000000, 0x008700},
                       {0xFFFFFF, 0xFF7CFF}};
  for (const auto& [kernel, rows] : {std::pair{"argb2ayuv", &to_yuv}, {"ayuv2argb", &to_rgb}}) {
    std::vector<std::uint32_t> in, want;
    for (const auto& [colour, result] : *rows)
      for (const std::uint32_t a : {0u, 7u, 128u, 255u}) {
        in.push_back(colour | a << 24);
        want.push_back(result | a << 24);
      }
    for (const harness::LineForm& f : harness::line_kernel_named(kernel).forms) {
      if (!f.supported()) continue;
      std::vector<std::uint32_t> out(in.size());
      f.run({out.data(), {in.data(), nullptr}, nullptr, nullptr, 0, std::int32_t(in.size())});
      for (std::size_t i = 0; i < in.size(); ++i)
        EXPECT_EQ(out[i], want[i]) << kernel << "/" << f.name << " input 0x" << std::hex << in[i];
    }
  }
  // The round trip loses the documented steps: white comes back as A 255, R 252, G 254, B 251.
  const std::uint32_t white = 0xFFFFFFFFu;
  std::uint32_t ayuv = 0, back = 0;
  qx_argb2ayuv(&ayuv, &white, 1);
  qx_ayuv2argb(&back, &ayuv, 1);
  EXPECT_EQ(back, 0xFFFCFEFBu);
}

// All 2^24 colour values of bytes 0..2, each with a random alpha, through every form of both
// conversions, against the scalar form.
TEST(Conversions, EveryColourInEveryForm) {
  constexpr std::int32_t kLine = 1 << 20;
  harness::Rng rng(24);
  std::vector<std::uint32_t> in(kLine), ref(kLine), out(kLine);
  for (const char* name : {"argb2ayuv", "ayuv2argb"}) {
    const std::vector<harness::LineForm>& forms = harness::line_kernel_named(name).forms;
    for (std::uint32_t first = 0; first < (1u << 24); first += kLine) {
      for (std::int32_t i = 0; i < kLine; ++i) in[i] = (first + i) | (rng() << 24);
      forms[0].run({ref.data(), {in.data(), nullptr}, nullptr, nullptr, 0, kLine});
      for (std::size_t f = 1; f < forms.size(); ++f) {
        if (!forms[f].supported()) continue;
        forms[f].run({out.data(), {in.data(), nullptr}, nullptr, nullptr, 0, kLine});
        const auto i = std::mismatch(out.begin(), out.end(), ref.begin()).first - out.begin();
        ASSERT_EQ(i, kLine) << name << "/" << forms[f].name << " input 0x" << std::hex << in[i]
                            << " gives 0x" << out[i] << ", scalar 0x" << ref[i];
      }
    }
  }
}

// v210 holds three 10-bit fields per word (bits 30-31 unused), in the order Cb, Y, Cr, Y for each
// pair of pixels. Every even count is unpacked exactly: a hand-built line (the fields count up,
// bits 30-31 set, the fields past the last pixel 1023) gives the planes in the order of the
// format, random words give what the scalar form gives. No form reads past the block holding the
// last pixel (the source ends at an inaccessible page) or writes outside the planes. Odd and
// non-positive counts write nothing and read nothing.
TEST(V210, UnpacksEvenCountsExactlyAndIgnoresOthers) {
  std::vector<std::int32_t> counts = {0, -2, -48, 1, 3, 47, 49, 1281, 1280, 1920, 1922};
  for (std::int32_t n = 2; n <= 100; n += 2) counts.push_back(n);
  std::vector<std::pair<std::string, V210Fn*>> forms = {{"export", qx_v210yuv422p10}};
  for (const auto& f : v210yuv422p10_forms)
    if (cpu_supports(f.isa)) forms.emplace_back(isa_name(f.isa), f.fn);
  const PageEnd page(16 * 321 + 16);  // 1922 pixels and a misalignment
  harness::Rng rng(210);
  for (const std::int32_t n : counts) {
    const std::size_t half = n > 0 && n % 2 == 0 ? std::size_t(n) / 2 : 0, samples = 4 * half;
    const auto field = [&](std::size_t j) { return j < samples ? (j * 7 + 1) & 0x3FF : 0x3FF; };
    std::vector<std::uint32_t> words(4 * ((2 * half + 5) / 6));
    for (const bool random : {false, true}) {
      std::vector<std::uint16_t> want(samples);
      for (std::size_t w = 0; w < words.size(); ++w)
        words[w] =
            random ? rng()
                   : 0xC0000000u | field(3 * w) | field(3 * w + 1) << 10 | field(3 * w + 2) << 20;
      if (random) scalar::v210yuv422p10(want.data(), words.data(), n);
      for (std::size_t j = 0; !random && j < samples; ++j) {
        const std::size_t p = j / 4, at[4] = {2 * half + p, 2 * p, 3 * half + p, 2 * p + 1};
        want[at[j % 4]] = static_cast<std::uint16_t>(field(j));
      }
      for (int combo = 0; combo < 16; ++combo) {
        // src 4-byte aligned, ending at the page when 16-byte aligned; dst 2-byte aligned.
        const std::size_t bytes = 4 * words.size(), src_off = 4 * (combo & 3);
        auto* src = reinterpret_cast<std::uint32_t*>(src_off ? page.place(bytes, src_off)
                                                             : page.flush(bytes));
        std::copy(words.begin(), words.end(), src);
        for (const auto& [name, fn] : forms) {
          Guarded out(2 * samples, 2 + 4 * (combo >> 2));
          fn(out.as<std::uint16_t>(), src, n);
          ASSERT_TRUE(out.guards_intact() &&
                      std::equal(want.begin(), want.end(), out.as<std::uint16_t>()))
              << name << " count " << n << (random ? " random" : " hand-built") << " combo "
              << combo;
        }
      }
    }
  }
}

}  // namespace
}  // namespace qx::test
