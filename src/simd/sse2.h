// The SSE2 vector policy: four pixels per 128-bit vector.
//
// Kernels are written once against this vocabulary (a template over V) and instantiated per
// instruction set. Every operation has the in-lane meaning of its SSE2 instruction, so a wider
// policy repeats the same operation in each 128-bit lane and a kernel's bytes do not depend on
// the width. Include only from translation units built for SSE2 or above; everything lives in
// qx::sse2 so that no inline copy can be shared with code built for another instruction set.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "frame/pixel.h"
#include "frame/reciprocal.h"
#include "frame/unit.h"

namespace qx::sse2 {
inline namespace QX_UNIT_NS {

struct V {
  using Px = __m128i;
  static constexpr std::int32_t kPixels = 4;

  // ---- memory (no alignment required) ----
  static Px load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
  static void store(void* p, Px v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
  static Px load32(const void* p) {  // 4 bytes into the low 32-bit lane, the rest zero
    std::uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return _mm_cvtsi32_si128(static_cast<int>(v));
  }

  // ---- constants ----
  static Px zero() { return _mm_setzero_si128(); }
  static Px set_px(std::uint32_t v) { return _mm_set1_epi32(static_cast<int>(v)); }
  static Px set16(std::uint32_t v) { return _mm_set1_epi16(static_cast<short>(v)); }
  // The same four 16-bit lanes (bytes 0, 1, 2, alpha of a widened pixel) for every pixel.
  static Px set16x4(std::uint16_t c0, std::uint16_t c1, std::uint16_t c2, std::uint16_t c3) {
    return _mm_setr_epi16(static_cast<short>(c0), static_cast<short>(c1), static_cast<short>(c2),
                          static_cast<short>(c3), static_cast<short>(c0), static_cast<short>(c1),
                          static_cast<short>(c2), static_cast<short>(c3));
  }

  // ---- widening and narrowing: pixels <-> 16-bit lanes ----
  // widen_*: bytes of the low (high) half of the pixels into 16-bit lanes as byte * 256.
  static Px widen_lo(Px x) { return _mm_unpacklo_epi8(_mm_setzero_si128(), x); }
  static Px widen_hi(Px x) { return _mm_unpackhi_epi8(_mm_setzero_si128(), x); }
  // zext_*: the same bytes zero-extended (byte in the low half of the lane).
  static Px zext_lo(Px x) { return _mm_unpacklo_epi8(x, _mm_setzero_si128()); }
  static Px zext_hi(Px x) { return _mm_unpackhi_epi8(x, _mm_setzero_si128()); }
  // Packs the lanes of widen_lo/zext_lo (first) and widen_hi/zext_hi (second) back to pixels,
  // with unsigned saturation of each signed 16-bit lane.
  static Px pack(Px lo, Px hi) { return _mm_packus_epi16(lo, hi); }
  // Copies each pixel's alpha lane (16-bit lane 3 of its four) into all four of its lanes.
  static Px splat_alpha(Px x) { return _mm_shufflehi_epi16(_mm_shufflelo_epi16(x, 0xFF), 0xFF); }
  // Permutes the four 16-bit lanes of each widened pixel: lane k takes lane (kImm >> 2k) & 3.
  template <int kImm>
  static Px shuffle16x4(Px x) {
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(x, kImm), kImm);
  }
  // Byte k of m (k < kPixels) into all four bytes of pixel k.
  static Px splat_bytes(const std::uint8_t* m) {
    const Px b = load32(m);                 // m0 m1 m2 m3 | 0...
    const Px b2 = _mm_unpacklo_epi8(b, b);  // m0 m0 m1 m1 m2 m2 m3 m3
    return _mm_unpacklo_epi16(b2, b2);      // m0 x4 | m1 x4 | m2 x4 | m3 x4
  }
  // ReciprocalTable[v & 0xFF] of each pixel's first 16-bit lane v, in all four of its lanes (x laid
  // out as widen_lo / widen_hi lay out pixels): two scalar table reads per half.
  static Px reciprocal_px(Px x) {
    const Px r0 =
        _mm_cvtsi32_si128(static_cast<int>(ReciprocalPairs[_mm_extract_epi16(x, 0) & 0xFF]));
    const Px r1 =
        _mm_cvtsi32_si128(static_cast<int>(ReciprocalPairs[_mm_extract_epi16(x, 4) & 0xFF]));
    const Px both = _mm_unpacklo_epi32(r0, r1);  // r0 r0 r1 r1 | 0...
    return _mm_unpacklo_epi32(both, both);       // r0 x4 | r1 x4
  }

  // ---- 16-bit lane arithmetic ----
  static Px add16(Px a, Px b) { return _mm_add_epi16(a, b); }
  static Px sub16(Px a, Px b) { return _mm_sub_epi16(a, b); }
  static Px adds_u16(Px a, Px b) { return _mm_adds_epu16(a, b); }
  static Px subs_u16(Px a, Px b) { return _mm_subs_epu16(a, b); }
  static Px mullo16(Px a, Px b) { return _mm_mullo_epi16(a, b); }
  static Px mulhi_u16(Px a, Px b) { return _mm_mulhi_epu16(a, b); }
  static Px mulhi_s16(Px a, Px b) { return _mm_mulhi_epi16(a, b); }
  static Px madd16(Px a, Px b) { return _mm_madd_epi16(a, b); }  // pairs of s16 products -> s32
  static Px srl16(Px a, int n) { return _mm_srli_epi16(a, n); }
  static Px sll16(Px a, int n) { return _mm_slli_epi16(a, n); }
  static Px sra16(Px a, int n) { return _mm_srai_epi16(a, n); }
  static Px srl32(Px a, int n) { return _mm_srli_epi32(a, n); }
  static Px sll32(Px a, int n) { return _mm_slli_epi32(a, n); }
  static Px sra32(Px a, int n) { return _mm_srai_epi32(a, n); }
  static Px min_s16(Px a, Px b) { return _mm_min_epi16(a, b); }
  static Px max_s16(Px a, Px b) { return _mm_max_epi16(a, b); }
  static Px cmpeq16(Px a, Px b) { return _mm_cmpeq_epi16(a, b); }
  static Px cmpeq32(Px a, Px b) { return _mm_cmpeq_epi32(a, b); }

  // ---- bitwise ----
  static Px and_(Px a, Px b) { return _mm_and_si128(a, b); }
  static Px or_(Px a, Px b) { return _mm_or_si128(a, b); }
  static Px xor_(Px a, Px b) { return _mm_xor_si128(a, b); }
  static Px andnot(Px a, Px b) { return _mm_andnot_si128(a, b); }  // ~a & b
};

}  // namespace QX_UNIT_NS
}  // namespace qx::sse2
