// Colour-format conversion: the worked colours of both directions, every colour value through
// every form, the documented round-trip loss, and v210 unpacking (sample order, exact extent of
// reads and writes for every even count, every form against the scalar form).
#include "convert/convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "catalog.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

struct Colour {
  std::uint8_t c0, c1, c2;  // bytes 0..2: B, G, R or U, Y, V
  std::uint8_t out0, out1, out2;
};

// Each colour with several alphas, through every form of the kernel; alpha must come back as is.
void check_colours(const harness::LineKernel& k, const std::vector<Colour>& table) {
  static constexpr std::uint8_t kAlphas[] = {0, 7, 128, 255};
  std::vector<std::uint32_t> in, want;
  for (const Colour& c : table)
    for (std::uint8_t a : kAlphas) {
      in.push_back(c.c0 | c.c1 << 8 | c.c2 << 16 | std::uint32_t{a} << 24);
      want.push_back(c.out0 | c.out1 << 8 | c.out2 << 16 | std::uint32_t{a} << 24);
    }
  const auto n = static_cast<std::int32_t>(in.size());
  for (const harness::LineForm& f : k.forms) {
    if (!f.supported()) continue;
    std::vector<std::uint32_t> out(in.size());
    f.run({out.data(), {in.data(), nullptr}, nullptr, nullptr, 0, n});
    for (std::size_t i = 0; i < in.size(); ++i)
      EXPECT_EQ(out[i], want[i]) << k.name << "/" << f.name << " input 0x" << std::hex << in[i];
  }
}

TEST(Argb2Ayuv, WorkedColours) {
  // B, G, R -> U, Y, V. Every sum floors, so white lands one step below 128/235/128.
  check_colours(harness::line_kernel_named("argb2ayuv"), {
                                                             {0, 0, 0, 128, 16, 128},
                                                             {255, 255, 255, 127, 234, 127},
                                                             {0, 0, 255, 90, 81, 239},
                                                             {0, 255, 0, 53, 144, 34},
                                                             {255, 0, 0, 239, 40, 109},
                                                             {128, 128, 128, 128, 125, 127},
                                                         });
}

TEST(Ayuv2Argb, WorkedColours) {
  // U, Y, V -> B, G, R. The last row shows green's two separately floored parts (one flooring
  // of the whole sum would give 125).
  check_colours(harness::line_kernel_named("ayuv2argb"), {
                                                             {128, 16, 128, 0, 0, 0},
                                                             {128, 235, 128, 254, 254, 254},
                                                             {128, 126, 128, 128, 128, 128},
                                                             {0, 0, 0, 0, 135, 0},
                                                             {255, 255, 255, 255, 124, 255},
                                                         });
}

TEST(Conversions, RoundTripLosesTheDocumentedSteps) {
  const std::uint32_t white = 0xFFFFFFFFu;
  std::uint32_t ayuv = 0, back = 0;
  qx_argb2ayuv(&ayuv, &white, 1);
  qx_ayuv2argb(&back, &ayuv, 1);
  EXPECT_EQ(back, 0xFFFCFEFBu);  // A 255, R 252, G 254, B 251
}

// All 2^24 colour values of bytes 0..2, each with a random alpha, through every form of both
// conversions, compared with the scalar form.
TEST(Conversions, EveryColourInEveryForm) {
  constexpr std::int32_t kLine = 1 << 20;
  harness::Rng rng(24);
  std::vector<std::uint32_t> in(kLine), ref(kLine), out(kLine);
  for (const char* name : {"argb2ayuv", "ayuv2argb"}) {
    const harness::LineKernel& k = harness::line_kernel_named(name);
    for (std::uint32_t first = 0; first < (1u << 24); first += kLine) {
      for (std::int32_t i = 0; i < kLine; ++i) in[i] = (first + i) | (rng() << 24);
      k.forms[0].run({ref.data(), {in.data(), nullptr}, nullptr, nullptr, 0, kLine});
      for (std::size_t f = 1; f < k.forms.size(); ++f) {
        if (!k.forms[f].supported()) continue;
        k.forms[f].run({out.data(), {in.data(), nullptr}, nullptr, nullptr, 0, kLine});
        const auto diff = std::mismatch(out.begin(), out.end(), ref.begin());
        ASSERT_TRUE(diff.first == out.end())
            << name << "/" << k.forms[f].name << " input 0x" << std::hex
            << in[diff.first - out.begin()] << " gives 0x" << *diff.first << ", scalar 0x"
            << *diff.second;
      }
    }
  }
}

// ---- v210 ----

struct V210Form {
  std::string name;
  Isa isa;
  V210Fn* fn;
};

std::vector<V210Form> v210_forms() {
  std::vector<V210Form> forms;
  for (const auto& f : v210yuv422p10_forms)
    if (cpu_supports(f.isa)) forms.push_back({isa_name(f.isa), f.isa, f.fn});
  forms.push_back({"export", Isa::kScalar, qx_v210yuv422p10});
  return forms;
}

// Bytes of v210 a line of n pixels occupies: whole 16-byte blocks of six pixels.
std::size_t v210_bytes(std::int32_t n) { return 16 * ((static_cast<std::size_t>(n) + 5) / 6); }

// Packs planes into v210 blocks by the layout of the format, setting bits 30-31 of every word and
// filling the fields past the last pixel with 1023, neither of which may reach the output.
std::vector<std::uint32_t> pack_v210(const std::vector<std::uint16_t>& y,
                                     const std::vector<std::uint16_t>& cb,
                                     const std::vector<std::uint16_t>& cr) {
  const std::size_t blocks = (y.size() + 5) / 6;
  auto at = [](const std::vector<std::uint16_t>& v, std::size_t i) -> std::uint32_t {
    return i < v.size() ? v[i] : 0x3FF;
  };
  std::vector<std::uint32_t> words;
  for (std::size_t b = 0; b < blocks; ++b) {
    const std::size_t p = 6 * b, c = 3 * b;
    const std::uint32_t top = 0xC0000000u;
    words.push_back(top | at(cb, c) | at(y, p) << 10 | at(cr, c) << 20);
    words.push_back(top | at(y, p + 1) | at(cb, c + 1) << 10 | at(y, p + 2) << 20);
    words.push_back(top | at(cr, c + 1) | at(y, p + 3) << 10 | at(cb, c + 2) << 20);
    words.push_back(top | at(y, p + 4) | at(cr, c + 2) << 10 | at(y, p + 5) << 20);
  }
  return words;
}

TEST(V210, SampleOrderAndExtent) {
  // The source ends at an inaccessible page right after the block that holds the last pixel; the
  // output has guard zones and starts at a 2-byte (not 16-byte) boundary.
  const PageEnd page(v210_bytes(1922));
  for (const std::int32_t n : {2, 6, 48, 96, 1280, 1920, 1922}) {
    std::vector<std::uint16_t> y(n), cb(n / 2), cr(n / 2);
    for (std::int32_t i = 0; i < n; ++i) y[i] = static_cast<std::uint16_t>((i * 7 + 1) & 0x3FF);
    for (std::int32_t i = 0; i < n / 2; ++i) {
      cb[i] = static_cast<std::uint16_t>((i * 11 + 500) & 0x3FF);
      cr[i] = static_cast<std::uint16_t>(0x3FF - (i * 13 & 0x3FF));
    }
    const std::vector<std::uint32_t> words = pack_v210(y, cb, cr);
    auto* src = reinterpret_cast<std::uint32_t*>(page.flush(4 * words.size()));
    std::memcpy(src, words.data(), 4 * words.size());
    std::vector<std::uint16_t> want = y;
    want.insert(want.end(), cb.begin(), cb.end());
    want.insert(want.end(), cr.begin(), cr.end());
    for (const V210Form& f : v210_forms()) {
      Guarded out(4 * std::size_t(n), 2);
      f.fn(out.as<std::uint16_t>(), src, n);
      EXPECT_TRUE(out.guards_intact()) << f.name << " count " << n;
      EXPECT_EQ(std::memcmp(out.data(), want.data(), 4 * std::size_t(n)), 0)
          << f.name << " count " << n;
    }
  }
}

TEST(V210, OddAndNonPositiveCountsTouchNothing) {
  const PageEnd page(16);
  const auto* unreadable = reinterpret_cast<const std::uint32_t*>(page.flush(0));
  for (const std::int32_t n : {0, -2, -48, 1, 3, 47, 49, 1281}) {
    for (const V210Form& f : v210_forms()) {
      Guarded out(64, 0);
      f.fn(out.as<std::uint16_t>(), unreadable, n);
      EXPECT_TRUE(out.guards_intact()) << f.name << " count " << n;
      EXPECT_TRUE(std::all_of(out.data(), out.data() + 64,
                              [](std::uint8_t b) { return b == Guarded::kMarker; }))
          << f.name << " count " << n;
    }
  }
}

TEST(V210, EveryFormMatchesScalarForEveryEvenCount) {
  std::vector<std::int32_t> counts = {1280, 1920, 1922};
  for (std::int32_t n = 2; n <= 100; n += 2) counts.push_back(n);
  const PageEnd page(v210_bytes(1922) + 16);
  harness::Rng rng(210);
  for (const std::int32_t n : counts) {
    std::vector<std::uint32_t> words(v210_bytes(n) / 4);
    for (auto& w : words) w = rng();  // bits 30-31 random too
    std::vector<std::uint16_t> ref(2 * std::size_t(n));
    scalar::v210yuv422p10(ref.data(), words.data(), n);
    for (int combo = 0; combo < 16; ++combo) {
      // src 4-byte aligned, flush against the page when 16-byte aligned; dst 2-byte aligned.
      const std::size_t src_off = 4 * (combo & 3), dst_off = 2 + 4 * (combo >> 2);
      auto* src = reinterpret_cast<std::uint32_t*>(
          src_off == 0 ? page.flush(4 * words.size()) : page.place(4 * words.size(), src_off));
      std::memcpy(src, words.data(), 4 * words.size());
      for (const V210Form& f : v210_forms()) {
        Guarded out(4 * std::size_t(n), dst_off % 16);
        f.fn(out.as<std::uint16_t>(), src, n);
        ASSERT_TRUE(out.guards_intact()) << f.name << " count " << n << " combo " << combo;
        ASSERT_EQ(std::memcmp(out.data(), ref.data(), 4 * std::size_t(n)), 0)
            << f.name << " count " << n << " combo " << combo;
      }
    }
  }
}

}  // namespace
}  // namespace qx::test
