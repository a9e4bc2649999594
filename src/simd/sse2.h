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
#include <utility>

#include "frame/pixel.h"
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

  // ---- 16-bit lane arithmetic ----
  static Px add16(Px a, Px b) { return _mm_add_epi16(a, b); }
  static Px add8(Px a, Px b) { return _mm_add_epi8(a, b); }
  static Px add32(Px a, Px b) { return _mm_add_epi32(a, b); }
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

  // ---- line ends, per-pixel bytes and tables, pixel-wide 16-bit lanes ----
  // The frame brings dst to a multiple of this many bytes with a partial first vector (at most
  // 4: it does not).
  static constexpr std::uintptr_t kStoreAlign = 16;

  // Pixels [0, n) of p (0 <= n <= kPixels) in the first n lanes, `fill` in the others; reads
  // only those n pixels.
  static Px load_n(const std::uint32_t* p, std::int32_t n, std::uint32_t fill) {
    const Px f = _mm_set1_epi32(static_cast<int>(fill));
    switch (n) {
      case 0:
        return f;
      case 1:
        return _mm_unpacklo_epi64(_mm_unpacklo_epi32(load32(p), f), f);
      case 2:
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), f);
      case 3:
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                  _mm_unpacklo_epi32(load32(p + 2), f));
      default:
        return load(p);
    }
  }
  // Stores the first n pixels of v (0 <= n <= kPixels) and nothing else.
  static void store_n(std::uint32_t* p, Px v, std::int32_t n) {
    if (n >= kPixels) return store(p, v);
    if (n & 2) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
      v = _mm_srli_si128(v, 8);
      p += 2;
    }
    if (n & 1) {
      const auto x = static_cast<std::uint32_t>(_mm_cvtsi128_si32(v));
      std::memcpy(p, &x, sizeof x);
    }
  }

  // One byte per pixel of a vector (mask bytes), in a register laid out for words_of_bytes.
  using Bytes = Px;
  static Bytes load_bytes(const std::uint8_t* p) { return load32(p); }
  // The first n bytes (0 <= n <= kPixels), the others zero; reads only those n bytes.
  static Bytes load_bytes_n(const std::uint8_t* p, std::int32_t n) {
    std::uint32_t v = 0;
    for (std::int32_t k = 0; k < n && k < kPixels; ++k) v |= std::uint32_t{p[k]} << (8 * k);
    return _mm_cvtsi32_si128(static_cast<int>(v));
  }
  // Byte k of b zero-extended into both 16-bit halves of pixel k: 0x00MM00MM.
  static Px words_of_bytes(Bytes b) {
    const Px w = _mm_unpacklo_epi8(b, _mm_setzero_si128());  // m0 m1 m2 m3 as words
    return _mm_unpacklo_epi16(w, w);
  }
  // Byte k of b * 256 in both 16-bit halves of pixel k: 0xMM00MM00.
  static Px words_of_bytes_hi(Bytes b) {
    const Px w = _mm_unpacklo_epi8(_mm_setzero_si128(), b);  // m0 m1 m2 m3 * 256
    return _mm_unpacklo_epi16(w, w);
  }
  // A 256-byte table (which must outlive it), and n bytes mapped through it.
  struct Table {
    const std::uint8_t* t;
  };
  static Table load_table(const std::uint8_t* t) { return {t}; }
  // A scalar loop (the table read through volatile: vectorisers turn it into a byte gather
  // emulated at many times the cost), four bytes to a store so load_bytes finds them in one.
  static void map_bytes(const Table& t, const std::uint8_t* in, std::uint8_t* out, std::int32_t n) {
    const volatile std::uint8_t* tv = t.t;
    std::int32_t k = 0;
    for (; k + 4 <= n; k += 4) {
      const std::uint32_t w = std::uint32_t{tv[in[k]]} | std::uint32_t{tv[in[k + 1]]} << 8 |
                              std::uint32_t{tv[in[k + 2]]} << 16 |
                              std::uint32_t{tv[in[k + 3]]} << 24;
      std::memcpy(out + k, &w, sizeof w);
    }
    for (; k < n; ++k) out[k] = tv[in[k]];
  }

  // Each pixel's alpha zero-extended into both 16-bit halves of the pixel: 0x00AA00AA.
  static Px alpha_words(Px x) {
    const Px a = _mm_srli_epi32(x, 24);
    return _mm_or_si128(a, _mm_slli_epi32(a, 16));
  }
  // Each pixel's alpha * 256 in both 16-bit halves: 0xAA00AA00.
  static Px alpha_words_hi(Px x) {
    const Px a = _mm_and_si128(x, _mm_set1_epi32(static_cast<int>(0xFF000000u)));
    return _mm_or_si128(a, _mm_srli_epi32(a, 16));
  }
  // Each pixel's alpha in all four of its bytes.
  static Px alpha_bytes(Px x) {
    const Px a = _mm_srli_epi32(x, 24);
    const Px aa = _mm_or_si128(a, _mm_slli_epi32(a, 8));
    return _mm_or_si128(aa, _mm_slli_epi32(aa, 16));
  }
  // The low 16 bits of each 32-bit lane in both of its halves.
  static Px dup_lo16(Px x) { return _mm_shufflehi_epi16(_mm_shufflelo_epi16(x, 0xA0), 0xA0); }
  // Byte k of each pixel takes byte bk of the same pixel (-1: zero). Bytes that move by the same
  // distance move together: a shift and a mask each.
  template <int b0, int b1, int b2, int b3>
  static Px pixel_bytes(Px x) {
    return [&]<int... i>(std::integer_sequence<int, i...>) {
      Px r = _mm_setzero_si128();
      ((r = _mm_or_si128(r, moved<i - 3, moving<b0, b1, b2, b3>(i - 3)>(x))), ...);
      return r;
    }
    (std::make_integer_sequence<int, 7>{});
  }
  // Two vectors of signed 16-bit halves, bytes 0 and 2 of each pixel (even) and bytes 1 and 3
  // (odd), to pixels, each value saturated to 0..255.
  static Px pack_words(Px even, Px odd) {
    const Px p = _mm_packus_epi16(even, odd);  // e0..e7 o0..o7
    return _mm_unpacklo_epi8(p, _mm_srli_si128(p, 8));
  }
  // Four vectors of one signed 32-bit value per pixel, channels 0 to 3, to pixels, each value
  // saturated to 0..255.
  static Px pack_channels(Px c0, Px c1, Px c2, Px c3) {
    const Px w = _mm_packus_epi16(_mm_packs_epi32(c0, c2), _mm_packs_epi32(c1, c3));  // c0 c2 c1 c3
    const Px x = _mm_unpacklo_epi8(w, _mm_srli_si128(w, 8));  // (c0 c1) per pixel, then (c2 c3)
    return _mm_unpacklo_epi16(x, _mm_srli_si128(x, 8));
  }
  // a where m is set, b elsewhere (every byte of m is 0x00 or 0xFF).
  static Px select(Px m, Px a, Px b) {
    return _mm_or_si128(_mm_and_si128(m, a), _mm_andnot_si128(m, b));
  }
  // ReciprocalTable[A] in both 16-bit halves of each 32-bit lane that holds A (0..255) in both.
  // Computed: the lane as a number is 65537 * A, exact in single precision; with r within 2^-17
  // of its reciprocal (the estimate refined by one Newton step), 65535.5 * 65537 * r (the constant
  // rounded, by far less) truncates to 65535 / A, since 65535.5 / A lies at least 0.5 / A from
  // either neighbouring integer. A = 0 gives the integer indefinite 0x80000000, whose low half,
  // 0, is entry 0.
  static Px reciprocal_pairs(Px x) {
    const __m128 a = _mm_cvtepi32_ps(x);
    const __m128 r0 = _mm_rcp_ps(a);
    const __m128 r1 = _mm_mul_ps(r0, _mm_sub_ps(_mm_set1_ps(2.0f), _mm_mul_ps(a, r0)));
    return dup_lo16(_mm_cvttps_epi32(_mm_mul_ps(r1, _mm_set1_ps(65535.5f * 65537.0f))));
  }

 private:
  // The bytes k of a pixel that take byte k - d under pixel_bytes<b0, b1, b2, b3>.
  template <int b0, int b1, int b2, int b3>
  static constexpr std::uint32_t moving(int d) {
    const int src[4] = {b0, b1, b2, b3};
    std::uint32_t m = 0;
    for (int k = 0; k < 4; ++k)
      if (src[k] >= 0 && k - src[k] == d) m |= 0xFFu << (8 * k);
    return m;
  }
  // The bytes of each pixel moved up by d bytes (down if d < 0), those outside kKeep cleared.
  template <int d, std::uint32_t kKeep>
  static Px moved(Px x) {
    if constexpr (kKeep == 0) return _mm_setzero_si128();
    if constexpr (d > 0) x = _mm_slli_epi32(x, 8 * d);
    if constexpr (d < 0) x = _mm_srli_epi32(x, -8 * d);
    constexpr std::uint32_t kFilled = d >= 0 ? ~0u << (8 * d) : ~0u >> (-8 * d);
    if constexpr (kKeep == kFilled) return x;
    return _mm_and_si128(x, _mm_set1_epi32(static_cast<int>(kKeep)));
  }

 public:
  // ---- resampling, zoom and unpacking ----
  // (SSE2 has no variable shuffle, so this policy has no permute_px, permute_px2 or permute_bytes2:
  // kernels that use them choose another path for it, or are not built for it.)
  static Px sub32(Px a, Px b) { return _mm_sub_epi32(a, b); }
  static Px srl64(Px a, int n) { return _mm_srli_epi64(a, n); }
  // Each odd 32-bit lane takes the even lane below it: x0 x0 x2 x2.
  static Px dup_even32(Px x) { return _mm_shuffle_epi32(x, _MM_SHUFFLE(2, 2, 0, 0)); }
  // The odd pixels of a and b, interleaved: a1 b1 a3 b3.
  static Px trn_odd_px(Px a, Px b) {
    const Px odd = _mm_castps_si128(
        _mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    return _mm_shuffle_epi32(odd, _MM_SHUFFLE(3, 1, 2, 0));  // a1 a3 b1 b3 -> a1 b1 a3 b3
  }
  // The pixels of the first (zip_lo) or second (zip_hi) halves of a and b, interleaved across the
  // whole vector: a0 b0 a1 b1 (zip_lo), a2 b2 a3 b3 (zip_hi).
  static Px zip_lo_px(Px a, Px b) { return _mm_unpacklo_epi32(a, b); }
  static Px zip_hi_px(Px a, Px b) { return _mm_unpackhi_epi32(a, b); }
  // Pixel 0, then pixels 0 .. last - 1: each pixel's predecessor, the first its own.
  static Px repeat_first_px(Px x) { return _mm_shuffle_epi32(x, _MM_SHUFFLE(2, 1, 0, 0)); }
  // Each pixel's predecessor when prev holds the pixels just before cur: the last pixel of prev,
  // then pixels 0 .. last - 1 of cur.
  static Px shift_in_px(Px cur, Px prev) {
    return _mm_or_si128(_mm_slli_si128(cur, 4), _mm_srli_si128(prev, 12));
  }
  // The even pixels of a, then those of b: a0 a2 b0 b2.
  static Px even_px(Px a, Px b) {
    return _mm_castps_si128(
        _mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
  }
  // The odd pixels of a, then those of b.
  static Px odd_px(Px a, Px b) {
    return _mm_castps_si128(
        _mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
  }
  // Pixel k = base[idx_k] (any alignment).
  static Px gather_px(const std::uint32_t* base, Px idx) {
    const Px i1 = _mm_shuffle_epi32(idx, _MM_SHUFFLE(1, 1, 1, 1));
    const Px i2 = _mm_shuffle_epi32(idx, _MM_SHUFFLE(2, 2, 2, 2));
    const Px i3 = _mm_shuffle_epi32(idx, _MM_SHUFFLE(3, 3, 3, 3));
    const Px p01 = _mm_unpacklo_epi32(load32(base + lane0(idx)), load32(base + lane0(i1)));
    const Px p23 = _mm_unpacklo_epi32(load32(base + lane0(i2)), load32(base + lane0(i3)));
    return _mm_unpacklo_epi64(p01, p23);
  }
  // A pair of adjacent pixels at each lane's index: pixels 2m and 2m + 1 of `even` are
  // base[idx_2m] and base[idx_2m + 1], those of `odd` base[idx_2m+1] and base[idx_2m+1 + 1]. (The
  // indices go through memory: one store, then four scalar loads the store forwards to.)
  static void gather_px_pairs(const std::uint32_t* base, Px idx, Px& even, Px& odd) {
    alignas(16) std::uint32_t i[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(i), idx);
    even = _mm_unpacklo_epi64(load64(base + i[0]), load64(base + i[2]));
    odd = _mm_unpacklo_epi64(load64(base + i[1]), load64(base + i[3]));
  }
  // The first halves of a and b (concat_lo), or their second halves (concat_hi), one after the
  // other.
  static Px concat_lo(Px a, Px b) { return _mm_unpacklo_epi64(a, b); }
  static Px concat_hi(Px a, Px b) { return _mm_unpackhi_epi64(a, b); }
  // Byte 0 of each pixel as a 16-bit value in all four lanes of that pixel, the pixels laid out
  // as zext_lo (lo) and zext_hi (hi) lay them out.
  static void spread_byte0(Px x, Px& lo, Px& hi) {
    const Px b = _mm_and_si128(x, _mm_set1_epi32(0xFF));
    const Px b2 = _mm_or_si128(b, _mm_slli_epi32(b, 16));  // the byte in both halves of its pixel
    lo = _mm_shuffle_epi32(b2, _MM_SHUFFLE(1, 1, 0, 0));
    hi = _mm_shuffle_epi32(b2, _MM_SHUFFLE(3, 3, 2, 2));
  }
  // The first 32-bit lane, and 8 bytes into the low 64-bit lane (the rest zero).
  static std::uint32_t lane0(Px x) { return static_cast<std::uint32_t>(_mm_cvtsi128_si32(x)); }
  static Px load64(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::sse2
