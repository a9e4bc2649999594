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
#include "simd/byte_plan.h"

namespace qx::avx2 {
inline namespace QX_UNIT_NS {

struct V {
  using Px = __m256i;
  static constexpr std::int32_t kBytes = sizeof(Px);
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

  static Px add16(Px a, Px b) { return _mm256_add_epi16(a, b); }
  static Px add8(Px a, Px b) { return _mm256_add_epi8(a, b); }
  static Px add32(Px a, Px b) { return _mm256_add_epi32(a, b); }
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

  // ---- line ends, per-pixel bytes and tables, pixel-wide 16-bit lanes (see simd/sse2.h) ----
  static constexpr std::uintptr_t kStoreAlign = 32;

  static Px load_n(const std::uint32_t* p, std::int32_t n, std::uint32_t fill) {
    if (n >= kPixels) return load(p);
    const Px keep =
        _mm256_cmpgt_epi32(_mm256_set1_epi32(n), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    return _mm256_blendv_epi8(_mm256_set1_epi32(static_cast<int>(fill)),
                              _mm256_maskload_epi32(reinterpret_cast<const int*>(p), keep), keep);
  }
  // (Masked stores are microcoded on some processors: plain 16-, 8- and 4-byte stores instead.)
  static void store_n(std::uint32_t* p, Px v, std::int32_t n) {
    if (n >= kPixels) return store(p, v);
    __m128i h = _mm256_castsi256_si128(v);
    if (n & 4) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(p), h);
      h = _mm256_extracti128_si256(v, 1);
      p += 4;
    }
    if (n & 2) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(p), h);
      h = _mm_srli_si128(h, 8);
      p += 2;
    }
    if (n & 1) {
      const auto x = static_cast<std::uint32_t>(_mm_cvtsi128_si32(h));
      std::memcpy(p, &x, sizeof x);
    }
  }

  // The eight bytes in the low half of each 128-bit lane.
  using Bytes = Px;
  static Bytes load_bytes(const std::uint8_t* p) {
    return _mm256_broadcastq_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  }
  static Bytes load_bytes_n(const std::uint8_t* p, std::int32_t n) {
    std::uint32_t v[2] = {0, 0};
    for (std::int32_t k = 0; k < n && k < kPixels; ++k)
      v[k / 4] |= std::uint32_t{p[k]} << (8 * (k % 4));
    return _mm256_broadcastq_epi64(
        _mm_setr_epi32(static_cast<int>(v[0]), static_cast<int>(v[1]), 0, 0));
  }
  static Px words_of_bytes(Bytes b) {
    const Px pattern = _mm256_setr_epi8(0, -1, 0, -1, 1, -1, 1, -1, 2, -1, 2, -1, 3, -1, 3, -1,  //
                                        4, -1, 4, -1, 5, -1, 5, -1, 6, -1, 6, -1, 7, -1, 7, -1);
    return _mm256_shuffle_epi8(b, pattern);
  }
  static Px words_of_bytes_hi(Bytes b) {
    const Px pattern = _mm256_setr_epi8(-1, 0, -1, 0, -1, 1, -1, 1, -1, 2, -1, 2, -1, 3, -1, 3,  //
                                        -1, 4, -1, 4, -1, 5, -1, 5, -1, 6, -1, 6, -1, 7, -1, 7);
    return _mm256_shuffle_epi8(b, pattern);
  }
  struct Table {
    const std::uint8_t* t;
  };
  static Table load_table(const std::uint8_t* t) { return {t}; }
  static void map_bytes(const Table& t, const std::uint8_t* in, std::uint8_t* out, std::int32_t n) {
    std::int32_t k = 0;
    for (; k + kBytes <= n; k += kBytes) store(out + k, lookup(t, load(in + k)));
    for (; k < n; ++k) out[k] = t.t[in[k]];
  }
  // Sixteen byte shuffles, one per 16-entry slice of the table, on the low nibble. A shuffle gives
  // zero where bit 7 of its index is set, so slices s and s + 8 pair up with bit 7 flipped for the
  // second; bits 4 to 6 then pick among the eight pairs, one bit at a time (moved to bit 7 by a
  // shift).
  static Px lookup(const Table& t, Px x) {
    const Px i0 = _mm256_and_si256(x, _mm256_set1_epi8(static_cast<char>(0x8F)));
    const Px i1 = _mm256_xor_si256(i0, _mm256_set1_epi8(static_cast<char>(0x80)));
    const auto slice = [&](int s) {
      return _mm256_broadcastsi128_si256(
          _mm_loadu_si128(reinterpret_cast<const __m128i*>(t.t + 16 * s)));
    };
    Px r[8];
    for (int p = 0; p < 8; ++p)
      r[p] =
          _mm256_or_si256(_mm256_shuffle_epi8(slice(p), i0), _mm256_shuffle_epi8(slice(p + 8), i1));
    for (int bit = 4, n = 8; bit < 7; ++bit, n /= 2) {
      const Px pick = _mm256_slli_epi16(x, 7 - bit);
      for (int k = 0; k < n / 2; ++k) r[k] = _mm256_blendv_epi8(r[2 * k], r[2 * k + 1], pick);
    }
    return r[0];
  }

  static Px alpha_words(Px x) { return bytes_by(x, 3, -1, 3, -1); }
  static Px alpha_words_hi(Px x) { return bytes_by(x, -1, 3, -1, 3); }
  static Px alpha_bytes(Px x) { return bytes_by(x, 3, 3, 3, 3); }
  static Px dup_lo16(Px x) { return bytes_by(x, 0, 1, 0, 1); }
  template <int b0, int b1, int b2, int b3>
  static Px pixel_bytes(Px x) {
    return bytes_by(x, b0, b1, b2, b3);
  }
  static Px pack_words(Px even, Px odd) {  // e0..e7 o0..o7 per 128-bit lane, then interleaved
    return _mm256_shuffle_epi8(
        _mm256_packus_epi16(even, odd),
        _mm256_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15, 0, 8, 1, 9, 2, 10, 3,
                         11, 4, 12, 5, 13, 6, 14, 7, 15));
  }
  static Px pack_channels(Px c0, Px c1, Px c2, Px c3) {  // c0 c2 c1 c3 per lane, then by pixel
    const Px w = _mm256_packus_epi16(_mm256_packs_epi32(c0, c2), _mm256_packs_epi32(c1, c3));
    return _mm256_shuffle_epi8(
        w, _mm256_setr_epi8(0, 8, 4, 12, 1, 9, 5, 13, 2, 10, 6, 14, 3, 11, 7, 15, 0, 8, 4, 12, 1, 9,
                            5, 13, 2, 10, 6, 14, 3, 11, 7, 15));
  }
  // (Byte blends take the top bit of each byte of m.)
  static Px select(Px m, Px a, Px b) { return _mm256_blendv_epi8(b, a, m); }
  // See simd/sse2.h.
  static Px reciprocal_pairs(Px x) {
    const __m256 a = _mm256_cvtepi32_ps(x);
    const __m256 r0 = _mm256_rcp_ps(a);
    const __m256 r1 = _mm256_mul_ps(r0, _mm256_sub_ps(_mm256_set1_ps(2.0f), _mm256_mul_ps(a, r0)));
    return dup_lo16(_mm256_cvttps_epi32(_mm256_mul_ps(r1, _mm256_set1_ps(65535.5f * 65537.0f))));
  }

 private:
  // Byte k of each pixel takes byte bk of the same pixel (-1: zero).
  static Px bytes_by(Px x, int b0, int b1, int b2, int b3) {
    const auto at = [](int b, int px) { return static_cast<char>(b < 0 ? -1 : b + 4 * px); };
    return _mm256_shuffle_epi8(
        x, _mm256_setr_epi8(at(b0, 0), at(b1, 0), at(b2, 0), at(b3, 0), at(b0, 1), at(b1, 1),
                            at(b2, 1), at(b3, 1), at(b0, 2), at(b1, 2), at(b2, 2), at(b3, 2),
                            at(b0, 3), at(b1, 3), at(b2, 3), at(b3, 3), at(b0, 0), at(b1, 0),
                            at(b2, 0), at(b3, 0), at(b0, 1), at(b1, 1), at(b2, 1), at(b3, 1),
                            at(b0, 2), at(b1, 2), at(b2, 2), at(b3, 2), at(b0, 3), at(b1, 3),
                            at(b2, 3), at(b3, 3)));
  }

 public:
  // ---- resampling, zoom and unpacking ----
  static Px sub32(Px a, Px b) { return _mm256_sub_epi32(a, b); }
  static Px srl64(Px a, int n) { return _mm256_srli_epi64(a, n); }
  // Each odd 32-bit lane takes the even lane below it: x0 x0 x2 x2 ...
  static Px dup_even32(Px x) { return _mm256_shuffle_epi32(x, _MM_SHUFFLE(2, 2, 0, 0)); }
  // The odd pixels of a and b, interleaved: a1 b1 a3 b3 ...
  static Px trn_odd_px(Px a, Px b) {
    const Px odd = _mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    return _mm256_shuffle_epi32(odd, _MM_SHUFFLE(3, 1, 2, 0));
  }
  // The pixels of the first (zip_lo) or second (zip_hi) halves of a and b, interleaved across the
  // whole vector: a0 b0 a1 b1 a2 b2 a3 b3 (zip_lo), a4 b4 ... a7 b7 (zip_hi).
  static Px zip_lo_px(Px a, Px b) {
    return _mm256_permute2x128_si256(_mm256_unpacklo_epi32(a, b), _mm256_unpackhi_epi32(a, b),
                                     0x20);
  }
  static Px zip_hi_px(Px a, Px b) {
    return _mm256_permute2x128_si256(_mm256_unpacklo_epi32(a, b), _mm256_unpackhi_epi32(a, b),
                                     0x31);
  }
  // Pixel 0, then pixels 0 .. last - 1: each pixel's predecessor, the first its own.
  static Px repeat_first_px(Px x) {
    return _mm256_permutevar8x32_epi32(x, _mm256_setr_epi32(0, 0, 1, 2, 3, 4, 5, 6));
  }
  // Each pixel's predecessor when prev holds the pixels just before cur: the last pixel of prev,
  // then pixels 0 .. last - 1 of cur.
  static Px shift_in_px(Px cur, Px prev) {
    return _mm256_alignr_epi8(cur, _mm256_permute2x128_si256(prev, cur, 0x21), 12);
  }
  // The even pixels of a, then those of b: a0 a2 a4 a6 b0 b2 b4 b6.
  static Px even_px(Px a, Px b) {
    const Px even = _mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
    return _mm256_permute4x64_epi64(even, _MM_SHUFFLE(3, 1, 2, 0));  // a0 a2 b0 b2 | a4 a6 b4 b6
  }
  // The odd pixels of a, then those of b.
  static Px odd_px(Px a, Px b) {
    const Px odd = _mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    return _mm256_permute4x64_epi64(odd, _MM_SHUFFLE(3, 1, 2, 0));  // a1 a3 b1 b3 | a5 a7 b5 b7
  }
  // Pixel k = base[idx_k] (any alignment).
  static Px gather_px(const std::uint32_t* base, Px idx) {
    return _mm256_i32gather_epi32(reinterpret_cast<const int*>(base), idx, 4);
  }
  // A pair of adjacent pixels at each lane's index: pixels 2m and 2m + 1 of `even` are
  // base[idx_2m] and base[idx_2m + 1], those of `odd` base[idx_2m+1] and base[idx_2m+1 + 1].
  static void gather_px_pairs(const std::uint32_t* base, Px idx, Px& even, Px& odd) {
    const Px split = _mm256_permutevar8x32_epi32(idx, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    const auto* b = reinterpret_cast<const long long*>(base);
    even = _mm256_i32gather_epi64(b, _mm256_castsi256_si128(split), 4);
    odd = _mm256_i32gather_epi64(b, _mm256_extracti128_si256(split, 1), 4);
  }
  // Pixel k = pixel idx_k of a (idx_k < 8).
  static Px permute_px(Px a, Px idx) { return _mm256_permutevar8x32_epi32(a, idx); }
  // Pixel k = pixel idx_k of the sixteen pixels of a, then b (idx_k < 16).
  static Px permute_px2(Px a, Px b, Px idx) {
    const __m256 from_b = _mm256_castsi256_ps(_mm256_slli_epi32(idx, 28));  // bit 3 to the sign
    return _mm256_castps_si256(
        _mm256_blendv_ps(_mm256_castsi256_ps(_mm256_permutevar8x32_epi32(a, idx)),
                         _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(b, idx)), from_b));
  }
  // Byte k = byte kIdx[k] of the 64 bytes of a, then b (byte_plan::kZero: zero), kIdx a
  // std::array of 32 byte indices fixed at compile time.
  template <const auto& kIdx>
  static Px permute_bytes2(Px a, Px b) {
    return byte_plan::run<V, kIdx>(a, b);
  }
  template <const auto& kPlan, int kPass>
  static Px permute_bytes_pass(Px a, Px b) {  // one pass of a byte_plan::Plan
    constexpr auto& lane = kPlan.lane[kPass];
    const Px idx = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(lane.data()));
    Px moved;
    if constexpr (!kPlan.uses_b[kPass]) {
      moved = _mm256_permutevar8x32_epi32(a, idx);
    } else if constexpr (!kPlan.uses_a[kPass]) {
      moved = _mm256_permutevar8x32_epi32(b, idx);
    } else {
      constexpr int from_b = [] {
        int m = 0;
        for (int d = 0; d < 8; ++d) m |= (lane[d] >= 8) << d;
        return m;
      }();
      moved = _mm256_blend_epi32(_mm256_permutevar8x32_epi32(a, idx),
                                 _mm256_permutevar8x32_epi32(b, idx), from_b);
    }
    return _mm256_shuffle_epi8(
        moved, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(kPlan.shuffle[kPass].data())));
  }
  // The first halves of a and b (concat_lo), or their second halves (concat_hi), one after the
  // other.
  static Px concat_lo(Px a, Px b) { return _mm256_permute2x128_si256(a, b, 0x20); }
  static Px concat_hi(Px a, Px b) { return _mm256_permute2x128_si256(a, b, 0x31); }
  // Byte 0 of each pixel as a 16-bit value in all four lanes of that pixel, the pixels laid out
  // as zext_lo (lo) and zext_hi (hi) lay them out.
  static void spread_byte0(Px x, Px& lo, Px& hi) {
    constexpr char z = -128;
    lo = _mm256_shuffle_epi8(x, _mm256_setr_epi8(0, z, 0, z, 0, z, 0, z, 4, z, 4, z, 4, z, 4, z,  //
                                                 0, z, 0, z, 0, z, 0, z, 4, z, 4, z, 4, z, 4, z));
    hi = _mm256_shuffle_epi8(
        x, _mm256_setr_epi8(8, z, 8, z, 8, z, 8, z, 12, z, 12, z, 12, z, 12, z, 8, z, 8, z, 8, z, 8,
                            z, 12, z, 12, z, 12, z, 12, z));
  }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::avx2
