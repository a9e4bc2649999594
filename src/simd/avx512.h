// The AVX-512 vector policy (AVX-512BW): sixteen pixels per 512-bit vector, four 128-bit lanes.
//
// Same vocabulary and in-lane meaning as the SSE2 policy (simd/sse2.h); comparisons return lane
// masks as vectors, as their SSE2 counterparts do. Include only from translation units built with
// -mavx512bw; everything lives in qx::avx512.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "frame/unit.h"

namespace qx::avx512 {
inline namespace QX_UNIT_NS {

struct V {
  using Px = __m512i;
  static constexpr std::int32_t kPixels = 16;

  static Px load(const void* p) { return _mm512_loadu_si512(p); }
  static void store(void* p, Px v) { _mm512_storeu_si512(p, v); }

  static Px zero() { return _mm512_setzero_si512(); }
  static Px set_px(std::uint32_t v) { return _mm512_set1_epi32(static_cast<int>(v)); }
  static Px set16(std::uint32_t v) { return _mm512_set1_epi16(static_cast<short>(v)); }
  static Px set16x4(std::uint16_t c0, std::uint16_t c1, std::uint16_t c2, std::uint16_t c3) {
    const std::uint64_t q =
        c0 | std::uint64_t{c1} << 16 | std::uint64_t{c2} << 32 | std::uint64_t{c3} << 48;
    return _mm512_set1_epi64(static_cast<long long>(q));
  }

  static Px widen_lo(Px x) { return _mm512_unpacklo_epi8(_mm512_setzero_si512(), x); }
  static Px widen_hi(Px x) { return _mm512_unpackhi_epi8(_mm512_setzero_si512(), x); }
  static Px zext_lo(Px x) { return _mm512_unpacklo_epi8(x, _mm512_setzero_si512()); }
  static Px zext_hi(Px x) { return _mm512_unpackhi_epi8(x, _mm512_setzero_si512()); }
  static Px pack(Px lo, Px hi) { return _mm512_packus_epi16(lo, hi); }
  static Px splat_alpha(Px x) {
    return _mm512_shufflehi_epi16(_mm512_shufflelo_epi16(x, 0xFF), 0xFF);
  }
  // Permutes the four 16-bit lanes of each pixel: lane k takes lane (kImm >> 2k) & 3.
  template <int kImm>
  static Px shuffle16x4(Px x) {
    return _mm512_shufflehi_epi16(_mm512_shufflelo_epi16(x, kImm), kImm);
  }
  // Byte k of m (k < kPixels) into all four bytes of pixel k.
  static Px splat_bytes(const std::uint8_t* m) {
    // (the zero-masked broadcast: the plain one reads an undefined register in GCC's headers)
    const Px b = _mm512_maskz_broadcast_i32x4(static_cast<__mmask16>(0xFFFF),
                                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(m)));
    const Px pattern = _mm512_set_epi32(0x0F0F0F0F, 0x0E0E0E0E, 0x0D0D0D0D, 0x0C0C0C0C,  //
                                        0x0B0B0B0B, 0x0A0A0A0A, 0x09090909, 0x08080808,  //
                                        0x07070707, 0x06060606, 0x05050505, 0x04040404,  //
                                        0x03030303, 0x02020202, 0x01010101, 0x00000000);
    return _mm512_shuffle_epi8(b, pattern);
  }
  // ReciprocalTable[v & 0xFF] of each pixel's first 16-bit lane v, in all four of its lanes (see
  // the SSE2 policy), computed rather than read: for 1 <= a <= 255 the single-precision quotient
  // 65535 / a truncates to 65535 / a exactly (65535 and a are exact, and a quotient that is not
  // an integer lies at least 1/a > 2^-9 below the next integer, more than the half unit in the
  // last place, 2^-9, that rounding can add), and a = 0 gives entry 0, which is 0.
  static Px reciprocal_px(Px x) {
    const Px a = _mm512_and_si512(x, _mm512_set1_epi32(0xFF));  // Aout, twice per pixel
    const __m512 q = _mm512_div_ps(_mm512_set1_ps(65535.0f),
                                   _mm512_cvtepi32_ps(_mm512_max_epi32(a, _mm512_set1_epi32(1))));
    const Px r = _mm512_maskz_cvttps_epi32(_mm512_test_epi32_mask(a, a), q);  // entry 0 is 0
    return _mm512_or_si512(r, _mm512_slli_epi32(r, 16));
  }

  static Px add16(Px a, Px b) { return _mm512_add_epi16(a, b); }
  static Px sub16(Px a, Px b) { return _mm512_sub_epi16(a, b); }
  static Px adds_u16(Px a, Px b) { return _mm512_adds_epu16(a, b); }
  static Px subs_u16(Px a, Px b) { return _mm512_subs_epu16(a, b); }
  static Px mullo16(Px a, Px b) { return _mm512_mullo_epi16(a, b); }
  static Px mulhi_u16(Px a, Px b) { return _mm512_mulhi_epu16(a, b); }
  static Px mulhi_s16(Px a, Px b) { return _mm512_mulhi_epi16(a, b); }
  static Px madd16(Px a, Px b) { return _mm512_madd_epi16(a, b); }
  static Px srl16(Px a, int n) { return _mm512_srli_epi16(a, static_cast<unsigned>(n)); }
  static Px sll16(Px a, int n) { return _mm512_slli_epi16(a, static_cast<unsigned>(n)); }
  static Px sra16(Px a, int n) { return _mm512_srai_epi16(a, static_cast<unsigned>(n)); }
  static Px srl32(Px a, int n) { return _mm512_srli_epi32(a, static_cast<unsigned>(n)); }
  static Px sll32(Px a, int n) { return _mm512_slli_epi32(a, static_cast<unsigned>(n)); }
  static Px sra32(Px a, int n) { return _mm512_srai_epi32(a, static_cast<unsigned>(n)); }
  static Px min_s16(Px a, Px b) { return _mm512_min_epi16(a, b); }
  static Px max_s16(Px a, Px b) { return _mm512_max_epi16(a, b); }
  static Px cmpeq16(Px a, Px b) { return _mm512_movm_epi16(_mm512_cmpeq_epi16_mask(a, b)); }
  static Px cmpeq32(Px a, Px b) {
    return _mm512_maskz_set1_epi32(_mm512_cmpeq_epi32_mask(a, b), -1);
  }

  static Px and_(Px a, Px b) { return _mm512_and_si512(a, b); }
  static Px or_(Px a, Px b) { return _mm512_or_si512(a, b); }
  static Px xor_(Px a, Px b) { return _mm512_xor_si512(a, b); }
  static Px andnot(Px a, Px b) { return _mm512_andnot_si512(a, b); }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::avx512
