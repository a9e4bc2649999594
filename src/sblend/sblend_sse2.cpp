#include <emmintrin.h>

#include "frame/family_vec.h"
#include "frame/reciprocal.h"
#include "sblend/sblend.h"
#include "sblend/sblend_vec.h"
#include "simd/sse2.h"

namespace qx::sse2 {
namespace {

// Four scalar table reads per group: each pixel's Aout from the first of its lanes (always
// 0..255), then each entry broadcast to the four lanes of its pixel.
struct TableRecip {
  static void recip(__m128i aout_lo, __m128i aout_hi, __m128i& r_lo, __m128i& r_hi) {
    const unsigned r0 = ReciprocalTable[_mm_extract_epi16(aout_lo, 0) & 0xFF];
    const unsigned r1 = ReciprocalTable[_mm_extract_epi16(aout_lo, 4) & 0xFF];
    const unsigned r2 = ReciprocalTable[_mm_extract_epi16(aout_hi, 0) & 0xFF];
    const unsigned r3 = ReciprocalTable[_mm_extract_epi16(aout_hi, 4) & 0xFF];
    const __m128i pairs = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(r0 | r1 << 16)),
                                             _mm_cvtsi32_si128(static_cast<int>(r2 | r3 << 16)));
    const __m128i twice = _mm_unpacklo_epi16(pairs, pairs);  // r0 r0 r1 r1 r2 r2 r3 r3
    r_lo = _mm_unpacklo_epi32(twice, twice);                 // r0 x4, r1 x4
    r_hi = _mm_unpackhi_epi32(twice, twice);                 // r2 x4, r3 x4
  }
};

template <Weight kW>
void line(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, std::int32_t n,
          const std::uint8_t* m, const std::uint8_t* l, std::uint32_t o) {
  vector_family_line<V, kW, SblendArith<TableRecip>>(d, b, f, n, m, l, o);
}

}  // namespace

QX_DEFINE_FAMILY(sblend, line)

}  // namespace qx::sse2
