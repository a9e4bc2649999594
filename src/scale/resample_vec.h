// The vector body of scale_line_interp, shared by the SSE2 and SSSE3 units. Include only from
// those units: everything here has internal linkage, so each unit compiles its own copy with its
// own instruction set.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace qx {
namespace {

// `Weights::spread(pos, lo, hi)` puts each position's fraction (its low byte) in all four 16-bit
// lanes of that pixel's widened channels: pixels 0 and 1 in `lo`, pixels 2 and 3 in `hi`.
template <class Weights>
void interp_groups(std::uint32_t* dst, const std::uint32_t* src, std::int32_t dst_count,
                   const std::int32_t* table) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i whole = _mm_set1_epi16(256);
  const std::int32_t groups = dst_count / 4;
  for (std::int32_t g = 0; g < groups; ++g, table += 4, dst += 4) {
    const __m128i pos = _mm_load_si128(reinterpret_cast<const __m128i*>(table));
    // Pixels i_j and i_j + 1 of each output, one unaligned 8-byte load each.
    const auto pair = [src, table](int j) {
      const std::uint32_t i = static_cast<std::uint32_t>(table[j]) >> 8;
      return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + i));
    };
    const __m128i a0 = pair(0), a1 = pair(1), a2 = pair(2), a3 = pair(3);
    // Left taps, widened to byte * 256: P[i0], P[i0+1] | P[i2], P[i2+1].
    const __m128i left_lo = _mm_unpacklo_epi8(zero, a0);
    const __m128i left_hi = _mm_unpacklo_epi8(zero, a2);
    // Right taps: P[i0+1], P[i1+1] | P[i2+1], P[i3+1] (the upper pixel of every pair).
    const __m128i right_lo = _mm_unpackhi_epi8(zero, _mm_unpacklo_epi32(a0, a1));
    const __m128i right_hi = _mm_unpackhi_epi8(zero, _mm_unpacklo_epi32(a2, a3));
    __m128i f_lo, f_hi;
    Weights::spread(pos, f_lo, f_hi);
    // (byte * 256) * w >> 16 = byte * w / 256, truncated per product; the sum stays <= 255.
    const __m128i lo = _mm_add_epi16(_mm_mulhi_epu16(left_lo, _mm_sub_epi16(whole, f_lo)),
                                     _mm_mulhi_epu16(right_lo, f_lo));
    const __m128i hi = _mm_add_epi16(_mm_mulhi_epu16(left_hi, _mm_sub_epi16(whole, f_hi)),
                                     _mm_mulhi_epu16(right_hi, f_hi));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm_packus_epi16(lo, hi));
  }
}

}  // namespace
}  // namespace qx
