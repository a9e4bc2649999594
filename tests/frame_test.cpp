// The library frame: the loop frame's tail and mask contract (with a probe kernel whose output
// shows which inputs each pixel saw), ReciprocalTable, the no-op entry and qx_fill's values.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frame/fill.h"
#include "frame/line.h"
#include "frame/reciprocal.h"
#include "kit/guarded.h"
#include "qxpixlib.h"
#if QX_X86
#include "simd/sse2.h"
#endif

namespace qx::test {
namespace {

using PairedMask = Shape<2, true, TailPairing::kLastFg>;

// Probe kernel: out = in0 ^ (in1 << 8) ^ mask byte, so every output shows what it was given.
void probe_scalar(const Lines& l) {
  scalar_line<PairedMask>(
      l, [](std::uint32_t a, std::uint32_t b, std::uint8_t m) { return a ^ (b << 8) ^ m; });
}
#if QX_X86
void probe_sse2(const Lines& l) {
  using V = sse2::V;
  vector_line<V, PairedMask>(l, [](V::Px a, V::Px b, const std::uint8_t* m) {
    const V::Px mb = V::srl32(V::splat_bytes(m), 24);  // each pixel's mask byte, zero-extended
    return V::xor_(V::xor_(a, V::sll32(b, 8)), mb);
  });
}
#endif

// What the frame promises, pixel by pixel: own inputs and mask byte, except that with a
// remainder of two the first tail pixel takes the last pixel of the second input.
std::uint32_t expected(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b,
                       const std::vector<std::uint8_t>& m, std::int32_t i, std::int32_t n) {
  const std::int32_t j = (n % 4 == 2 && i == n - 2) ? n - 1 : i;
  return a[i] ^ (b[j] << 8) ^ m[i];
}

TEST(Frame, TailPairingMaskAndBoundsInEveryForm) {
  std::vector<void (*)(const Lines&)> forms = {probe_scalar};
#if QX_X86
  forms.push_back(probe_sse2);
#endif
  const PageEnd pages[3] = {PageEnd(4096), PageEnd(4096), PageEnd(4096)};
  for (auto form : forms) {
    for (std::int32_t n = -6; n <= 13; ++n) {
      const std::int32_t len = n > 0 ? n : 0;
      std::vector<std::uint32_t> a(len + 1), b(len + 1);
      std::vector<std::uint8_t> m((len + 3) / 4 * 4 + 4);
      for (std::int32_t i = 0; i < len; ++i) {
        a[i] = 0x01000000u * (i + 1);
        b[i] = 0x010000u * (i + 7);
      }
      for (std::size_t i = 0; i < m.size(); ++i) m[i] = static_cast<std::uint8_t>(0x40 + i);
      // Lines end at an inaccessible page; the mask at its next multiple of four.
      auto* pa = reinterpret_cast<std::uint32_t*>(pages[0].flush(4 * len));
      auto* pb = reinterpret_cast<std::uint32_t*>(pages[1].flush(4 * len));
      const std::size_t mask_bytes = n > 0 ? (len + 3) / 4 * 4 : 4;
      auto* pm = pages[2].flush(mask_bytes);
      std::memcpy(pa, a.data(), 4 * len);
      std::memcpy(pb, b.data(), 4 * len);
      std::memcpy(pm, m.data(), mask_bytes);
      Guarded out(4 * len, 4);
      form(Lines{out.as<std::uint32_t>(), pa, pb, pm, n});
      EXPECT_TRUE(out.guards_intact()) << "count " << n;
      for (std::int32_t i = 0; i < len; ++i)
        EXPECT_EQ(out.as<std::uint32_t>()[i], expected(a, b, m, i, n))
            << "count " << n << " i " << i;
    }
  }
}

TEST(Frame, ReciprocalTable) {
  struct {
    int index;
    std::uint16_t value;
  } const cases[] = {{0, 0}, {1, 65535}, {2, 32767}, {3, 21845}, {4, 16383}, {255, 257}};
  for (auto c : cases) EXPECT_EQ(ReciprocalTable[c.index], c.value) << c.index;
  for (unsigned i = 1; i < 256; ++i) EXPECT_EQ(ReciprocalTable[i], 65535u / i);
}

TEST(Frame, PixinitAndStubTouchNothing) {
  Guarded g(64, 0);
  qx_pixinit();
  qx_r210argb();
  EXPECT_TRUE(g.guards_intact());
  for (int i = 0; i < 64; ++i) EXPECT_EQ(g.data()[i], Guarded::kMarker);
}

TEST(Fill, StoresTheValueAsMemoryBytes) {
  for (const auto& form : fill_forms) {
    if (!cpu_supports(form.isa)) continue;
    Guarded g(4 * 5, 4);
    form.fn(g.as<std::uint32_t>(), 0x80FF0000u, 5);  // half-transparent red
    const std::uint8_t px[4] = {0x00, 0x00, 0xFF, 0x80};
    for (int i = 0; i < 5; ++i)
      EXPECT_EQ(std::memcmp(g.data() + 4 * i, px, 4), 0) << isa_name(form.isa);
    EXPECT_TRUE(g.guards_intact());
  }
}

}  // namespace
}  // namespace qx::test
