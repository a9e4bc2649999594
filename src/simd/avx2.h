// The AVX2 vector policy: eight pixels per 256-bit vector, two 128-bit lanes of four.
//
// Same vocabulary and the same in-lane meaning as the SSE2 policy (simd/sse2.h): every operation
// acts on each 128-bit lane as its SSE2 counterpart acts on the whole vector, so widen_lo / pack
// pair up within each lane and a kernel written over V gives the same bytes at either width.
// Include only from translation units built with -mavx2; everything lives in qx::avx2.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "frame/unit.h"

namespace qx::avx2 {
inline namespace QX_UNIT_NS {

struct V {
  using Px = __m256i;
  static constexpr std::int32_t kPixels = 8;

  static Px load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
  static void store(void* p, Px v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }

  static Px zero() { return _mm256_setzero_si256(); }
  static Px set_px(std::uint32_t v) { return _mm256_set1_epi32(static_cast<int>(v)); }
  static Px set16(std::uint32_t v) { return _mm256_set1_epi16(static_cast<short>(v)); }
  static Px set16x4(std::uint16_t c0, std::uint16_t c1, std::uint16_t c2, std::uint16_t c3) {
    const std::uint64_t q =
        c0 | std::uint64_t{c1} << 16 | std::uint64_t{c2} << 32 | std::uint64_t{c3} << 48;
    return _mm256_set1_epi64x(static_cast<long long>(q));
  }

  static Px widen_lo(Px x) { return _mm256_unpacklo_epi8(_mm256_setzero_si256(), x); }
  static Px widen_hi(Px x) { return _mm256_unpackhi_epi8(_mm256_setzero_si256(), x); }
  static Px zext_lo(Px x) { return _mm256_unpacklo_epi8(x, _mm256_setzero_si256()); }
  static Px zext_hi(Px x) { return _mm256_unpackhi_epi8(x, _mm256_setzero_si256()); }
  static Px pack(Px lo, Px hi) { return _mm256_packus_epi16(lo, hi); }
  static Px splat_alpha(Px x) {
    return _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(x, 0xFF), 0xFF);
  }
  // Permutes the four 16-bit lanes of each pixel: lane k takes lane (kImm >> 2k) & 3.
  template <int kImm>
  static Px shuffle16x4(Px x) {
    return _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(x, kImm), kImm);
  }
  // Byte k of m (k < kPixels) into all four bytes of pixel k.
  static Px splat_bytes(const std::uint8_t* m) {
    std::uint64_t q;
    std::memcpy(&q, m, sizeof q);
    const Px b = _mm256_set1_epi64x(static_cast<long long>(q));  // m0..m7 in every quadword
    const Px pattern = _mm256_setr_epi8(0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3,  //
                                        4, 4, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7);
    return _mm256_shuffle_epi8(b, pattern);
  }
  // ReciprocalTable[v & 0xFF] of each pixel's first 16-bit lane v, in all four of its lanes (see
  // the SSE2 policy), computed rather than read: for 1 <= a <= 255 the single-precision quotient
  // 65535 / a truncates to 65535 / a exactly (65535 and a are exact, and a quotient that is not
  // an integer lies at least 1/a > 2^-9 below the next integer, more than the half unit in the
  // last place, 2^-9, that rounding can add), and a = 0 gives entry 0, which is 0.
  static Px reciprocal_px(Px x) {
    const Px a = _mm256_and_si256(x, _mm256_set1_epi32(0xFF));  // Aout, twice per pixel
    const __m256 q = _mm256_div_ps(_mm256_set1_ps(65535.0f),
                                   _mm256_cvtepi32_ps(_mm256_max_epi32(a, _mm256_set1_epi32(1))));
    const Px r = _mm256_and_si256(_mm256_cvttps_epi32(q),  // entry 0 is 0
                                  _mm256_cmpgt_epi32(a, _mm256_setzero_si256()));
    return _mm256_or_si256(r, _mm256_slli_epi32(r, 16));
  }

  static Px add16(Px a, Px b) { return _mm256_add_epi16(a, b); }
  static Px sub16(Px a, Px b) { return _mm256_sub_epi16(a, b); }
  static Px adds_u16(Px a, Px b) { return _mm256_adds_epu16(a, b); }
  static Px subs_u16(Px a, Px b) { return _mm256_subs_epu16(a, b); }
  static Px mullo16(Px a, Px b) { return _mm256_mullo_epi16(a, b); }
  static Px mulhi_u16(Px a, Px b) { return _mm256_mulhi_epu16(a, b); }
  static Px mulhi_s16(Px a, Px b) { return _mm256_mulhi_epi16(a, b); }
  static Px madd16(Px a, Px b) { return _mm256_madd_epi16(a, b); }
  static Px srl16(Px a, int n) { return _mm256_srli_epi16(a, n); }
  static Px sll16(Px a, int n) { return _mm256_slli_epi16(a, n); }
  static Px sra16(Px a, int n) { return _mm256_srai_epi16(a, n); }
  static Px srl32(Px a, int n) { return _mm256_srli_epi32(a, n); }
  static Px sll32(Px a, int n) { return _mm256_slli_epi32(a, n); }
  static Px sra32(Px a, int n) { return _mm256_srai_epi32(a, n); }
  static Px min_s16(Px a, Px b) { return _mm256_min_epi16(a, b); }
  static Px max_s16(Px a, Px b) { return _mm256_max_epi16(a, b); }
  static Px cmpeq16(Px a, Px b) { return _mm256_cmpeq_epi16(a, b); }
  static Px cmpeq32(Px a, Px b) { return _mm256_cmpeq_epi32(a, b); }

  static Px and_(Px a, Px b) { return _mm256_and_si256(a, b); }
  static Px or_(Px a, Px b) { return _mm256_or_si256(a, b); }
  static Px xor_(Px a, Px b) { return _mm256_xor_si256(a, b); }
  static Px andnot(Px a, Px b) { return _mm256_andnot_si256(a, b); }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::avx2
