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
#include "simd/byte_plan.h"

namespace qx::avx512 {
inline namespace QX_UNIT_NS {

struct V {
  using Px = __m512i;
  static constexpr std::int32_t kBytes = sizeof(Px);
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

  static Px add16(Px a, Px b) { return _mm512_add_epi16(a, b); }
  static Px add8(Px a, Px b) { return _mm512_add_epi8(a, b); }
  static Px add32(Px a, Px b) { return _mm512_add_epi32(a, b); }
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

  // ---- line ends, per-pixel bytes and tables, pixel-wide 16-bit lanes (see simd/sse2.h) ----
  // Whole cache lines: no store of the body splits one.
  static constexpr std::uintptr_t kStoreAlign = 64;

  static Px load_n(const std::uint32_t* p, std::int32_t n, std::uint32_t fill) {
    return _mm512_mask_loadu_epi32(_mm512_set1_epi32(static_cast<int>(fill)), first(n), p);
  }
  static void store_n(std::uint32_t* p, Px v, std::int32_t n) {
    _mm512_mask_storeu_epi32(p, first(n), v);
  }

  // The sixteen bytes in every 128-bit lane.
  using Bytes = Px;
  static Bytes load_bytes(const std::uint8_t* p) {
    return _mm512_maskz_broadcast_i32x4(static_cast<__mmask16>(0xFFFF),
                                        _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  }
  static Bytes load_bytes_n(const std::uint8_t* p, std::int32_t n) {
    return _mm512_maskz_broadcast_i32x4(static_cast<__mmask16>(0xFFFF),
                                        _mm_maskz_loadu_epi8(first(n), p));
  }
  static Px words_of_bytes(Bytes b) {
    const auto px = [](std::uint32_t k) { return static_cast<int>(0xFF00FF00u | k * 0x10001u); };
    return _mm512_shuffle_epi8(
        b, _mm512_setr_epi32(px(0), px(1), px(2), px(3), px(4), px(5), px(6), px(7), px(8), px(9),
                             px(10), px(11), px(12), px(13), px(14), px(15)));
  }
  static Px words_of_bytes_hi(Bytes b) {
    const auto px = [](std::uint32_t k) { return static_cast<int>(0x00FF00FFu | k * 0x1000100u); };
    return _mm512_shuffle_epi8(
        b, _mm512_setr_epi32(px(0), px(1), px(2), px(3), px(4), px(5), px(6), px(7), px(8), px(9),
                             px(10), px(11), px(12), px(13), px(14), px(15)));
  }
  struct Table {
    const std::uint8_t* t;
    Px slice[16];  // entries 16 s to 16 s + 15 in every 128-bit lane
  };
  static Table load_table(const std::uint8_t* t) {
    Table table{t, {}};
    for (int s = 0; s < 16; ++s) table.slice[s] = load_bytes(t + 16 * s);
    return table;
  }
  static void map_bytes(const Table& t, const std::uint8_t* in, std::uint8_t* out, std::int32_t n) {
    std::int32_t k = 0;
    for (; k + kBytes <= n; k += kBytes) store(out + k, lookup(t, load(in + k)));
    for (; k < n; ++k) out[k] = t.t[in[k]];
  }
  // As on AVX2 (simd/avx2.h): sixteen 16-entry slices paired on bit 7, then bits 4 to 6.
  static Px lookup(const Table& t, Px x) {
    const Px i0 = _mm512_and_si512(x, _mm512_set1_epi8(static_cast<char>(0x8F)));
    const Px i1 = _mm512_xor_si512(i0, _mm512_set1_epi8(static_cast<char>(0x80)));
    Px r[8];
    for (int p = 0; p < 8; ++p)
      r[p] = _mm512_or_si512(_mm512_shuffle_epi8(t.slice[p], i0),
                             _mm512_shuffle_epi8(t.slice[p + 8], i1));
    for (int bit = 4, n = 8; bit < 7; ++bit, n /= 2) {
      const __mmask64 pick =
          _mm512_test_epi8_mask(x, _mm512_set1_epi8(static_cast<char>(1 << bit)));
      for (int k = 0; k < n / 2; ++k) r[k] = _mm512_mask_blend_epi8(pick, r[2 * k], r[2 * k + 1]);
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
    return _mm512_shuffle_epi8(_mm512_packus_epi16(even, odd),
                               lane_bytes(0x09010800, 0x0B030A02, 0x0D050C04, 0x0F070E06));
  }
  static Px pack_channels(Px c0, Px c1, Px c2, Px c3) {  // c0 c2 c1 c3 per lane, then by pixel
    const Px w = _mm512_packus_epi16(_mm512_packs_epi32(c0, c2), _mm512_packs_epi32(c1, c3));
    return _mm512_shuffle_epi8(w, lane_bytes(0x0C040800, 0x0D050901, 0x0E060A02, 0x0F070B03));
  }
  static Px select(Px m, Px a, Px b) { return _mm512_ternarylogic_epi32(m, a, b, 0xCA); }
  // See simd/sse2.h; the estimate has 14 bits, the Newton step is fused.
  static Px reciprocal_pairs(Px x) {
    const __m512 a = _mm512_cvtepi32_ps(x);
    const __m512 r = _mm512_rcp14_ps(a);
    const __m512 q0 = _mm512_mul_ps(r, _mm512_set1_ps(65535.5f * 65537.0f));
    const __m512 e = _mm512_fnmadd_ps(a, r, _mm512_set1_ps(1.0f));  // 1 - a * r
    return dup_lo16(_mm512_cvttps_epi32(_mm512_fmadd_ps(q0, e, q0)));
  }

 protected:
  static __mmask16 first(std::int32_t n) { return static_cast<__mmask16>((1u << n) - 1); }
  // Byte k of each pixel takes byte bk of the same pixel (-1: zero).
  static Px bytes_by(Px x, int b0, int b1, int b2, int b3) {
    const auto at = [](int b, int px) { return b < 0 ? 0xFF : b + 4 * px; };
    const auto pixel = [&](int px) {
      return static_cast<int>(static_cast<std::uint32_t>(at(b0, px)) |
                              static_cast<std::uint32_t>(at(b1, px)) << 8 |
                              static_cast<std::uint32_t>(at(b2, px)) << 16 |
                              static_cast<std::uint32_t>(at(b3, px)) << 24);
    };
    return _mm512_shuffle_epi8(x, lane_bytes(pixel(0), pixel(1), pixel(2), pixel(3)));
  }
  // The same sixteen bytes (four 32-bit words) in every 128-bit lane.
  static Px lane_bytes(std::uint32_t w0, std::uint32_t w1, std::uint32_t w2, std::uint32_t w3) {
    return _mm512_broadcast_i32x4(_mm_setr_epi32(static_cast<int>(w0), static_cast<int>(w1),
                                                 static_cast<int>(w2), static_cast<int>(w3)));
  }

 public:
  // ---- resampling, zoom and unpacking ----
  static Px sub32(Px a, Px b) { return _mm512_sub_epi32(a, b); }
  static Px srl64(Px a, int n) { return _mm512_srli_epi64(a, static_cast<unsigned>(n)); }
  // Each odd 32-bit lane takes the even lane below it: x0 x0 x2 x2 ...
  static Px dup_even32(Px x) { return _mm512_shuffle_epi32(x, _MM_PERM_CCAA); }
  // The odd pixels of a and b, interleaved: a1 b1 a3 b3 ...
  static Px trn_odd_px(Px a, Px b) {
    return _mm512_mask_blend_epi32(0xAAAA, _mm512_srli_epi64(a, 32), b);
  }
  // The pixels of the first (zip_lo) or second (zip_hi) halves of a and b, interleaved across the
  // whole vector: a0 b0 ... a7 b7 (zip_lo), a8 b8 ... a15 b15 (zip_hi).
  static Px zip_lo_px(Px a, Px b) {
    return _mm512_permutex2var_epi32(
        a, _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23), b);
  }
  static Px zip_hi_px(Px a, Px b) {
    return _mm512_permutex2var_epi32(
        a, _mm512_setr_epi32(8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31), b);
  }
  // Pixel 0, then pixels 0 .. last - 1: each pixel's predecessor, the first its own.
  static Px repeat_first_px(Px x) {
    return _mm512_permutexvar_epi32(
        _mm512_setr_epi32(0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14), x);
  }
  // Each pixel's predecessor when prev holds the pixels just before cur: the last pixel of prev,
  // then pixels 0 .. last - 1 of cur.
  static Px shift_in_px(Px cur, Px prev) { return _mm512_alignr_epi32(cur, prev, 15); }
  // The even pixels of a, then those of b: a0 a2 ... a14 b0 b2 ... b14.
  static Px even_px(Px a, Px b) {
    return _mm512_permutex2var_epi32(
        a, _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30), b);
  }
  // The odd pixels of a, then those of b.
  static Px odd_px(Px a, Px b) {
    return _mm512_permutex2var_epi32(
        a, _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31), b);
  }
  // Pixel k = base[idx_k] (any alignment).
  static Px gather_px(const std::uint32_t* base, Px idx) {
    return _mm512_i32gather_epi32(idx, base, 4);
  }
  // A pair of adjacent pixels at each lane's index: pixels 2m and 2m + 1 of `even` are
  // base[idx_2m] and base[idx_2m + 1], those of `odd` base[idx_2m+1] and base[idx_2m+1 + 1].
  static void gather_px_pairs(const std::uint32_t* base, Px idx, Px& even, Px& odd) {
    even = _mm512_i32gather_epi64(_mm512_cvtepi64_epi32(idx), base, 4);
    odd = _mm512_i32gather_epi64(_mm512_cvtepi64_epi32(_mm512_srli_epi64(idx, 32)), base, 4);
  }
  // Pixel k = pixel idx_k of a (idx_k < 16).
  static Px permute_px(Px a, Px idx) { return _mm512_permutexvar_epi32(idx, a); }
  // Pixel k = pixel idx_k of the 32 pixels of a, then b (idx_k < 32).
  static Px permute_px2(Px a, Px b, Px idx) { return _mm512_permutex2var_epi32(a, idx, b); }
  // Byte k = byte kIdx[k] of the 128 bytes of a, then b (byte_plan::kZero: zero), kIdx a
  // std::array of 64 byte indices fixed at compile time.
  template <const auto& kIdx>
  static Px permute_bytes2(Px a, Px b) {
    return byte_plan::run<V, kIdx>(a, b);
  }
  template <const auto& kPlan, int kPass>
  static Px permute_bytes_pass(Px a, Px b) {  // one pass of a byte_plan::Plan
    const Px idx = _mm512_loadu_si512(kPlan.lane[kPass].data());
    Px moved;
    if constexpr (!kPlan.uses_b[kPass])
      moved = _mm512_permutexvar_epi32(idx, a);
    else if constexpr (!kPlan.uses_a[kPass])
      moved = _mm512_permutexvar_epi32(idx, b);  // (only the low four bits of each index count)
    else
      moved = _mm512_permutex2var_epi32(a, idx, b);
    return _mm512_shuffle_epi8(moved, _mm512_loadu_si512(kPlan.shuffle[kPass].data()));
  }
  // The first halves of a and b (concat_lo), or their second halves (concat_hi), one after the
  // other.
  static Px concat_lo(Px a, Px b) { return _mm512_shuffle_i64x2(a, b, _MM_SHUFFLE(1, 0, 1, 0)); }
  static Px concat_hi(Px a, Px b) { return _mm512_shuffle_i64x2(a, b, _MM_SHUFFLE(3, 2, 3, 2)); }
  // Byte 0 of each pixel as a 16-bit value in all four lanes of that pixel, the pixels laid out
  // as zext_lo (lo) and zext_hi (hi) lay them out.
  static void spread_byte0(Px x, Px& lo, Px& hi) {
    // Per 128-bit lane: bytes 0 (lo) or 8 (hi) into the low bytes of 16-bit lanes 0..3, bytes 4
    // (lo) or 12 (hi) into those of lanes 4..7, zero (0x80) into the high bytes.
    const auto q = [](unsigned long long v) { return static_cast<long long>(v); };
    lo = _mm512_shuffle_epi8(x, _mm512_set4_epi64(q(0x8004800480048004), q(0x8000800080008000),
                                                  q(0x8004800480048004), q(0x8000800080008000)));
    hi = _mm512_shuffle_epi8(x, _mm512_set4_epi64(q(0x800C800C800C800C), q(0x8008800880088008),
                                                  q(0x800C800C800C800C), q(0x8008800880088008)));
  }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::avx512
