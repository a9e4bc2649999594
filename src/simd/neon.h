// The NEON vector policy (AArch64): four pixels per 128-bit vector.
//
// Same vocabulary and the same meaning as the SSE2 policy (simd/sse2.h), operation for operation,
// so a kernel written over V gives the same bytes here. Byte moves that SSE2 spells as shuffles,
// unpacks and shifts are mostly one table lookup (tbl) here: its index vector is a constant, and an
// index past the table gives zero, which stands for byte_plan::kZero and for SSE2's zeroed bytes.
// NEON is part of the AArch64 baseline, so units built for it need no flags; everything lives in
// qx::neon all the same, like every other policy.
#pragma once

#include <arm_neon.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "frame/unit.h"

namespace qx::neon {
inline namespace QX_UNIT_NS {

// Constant byte moves within one vector (kept out of the namespace the kernels are written in).
namespace tbl {

// Byte indices of a table lookup; Z (past any table) gives zero.
using Index = std::array<std::uint8_t, 16>;
inline constexpr std::uint8_t Z = 0xFF;

// Byte k of each pixel from byte bk of the same pixel (-1: zero, an index past the table).
constexpr Index bytes_by(int b0, int b1, int b2, int b3) {
  const int b[4] = {b0, b1, b2, b3};
  Index idx{};
  for (int k = 0; k < 16; ++k)
    idx[k] = static_cast<std::uint8_t>(b[k % 4] < 0 ? Z : k / 4 * 4 + b[k % 4]);
  return idx;
}
// Each widened pixel's four 16-bit lanes k taking its lane wk.
constexpr Index words4(int w0, int w1, int w2, int w3) {
  const int w[4] = {w0, w1, w2, w3};
  Index idx{};
  for (int half = 0; half < 2; ++half)
    for (int k = 0; k < 4; ++k) {
      idx[8 * half + 2 * k] = static_cast<std::uint8_t>(8 * half + 2 * w[k]);
      idx[8 * half + 2 * k + 1] = static_cast<std::uint8_t>(8 * half + 2 * w[k] + 1);
    }
  return idx;
}
// Byte k = byte kIdx[k] of x, zero for an index past it.
template <Index kIdx>
inline uint8x16_t lookup1(uint8x16_t x) {
  return vqtbl1q_u8(x, vld1q_u8(kIdx.data()));
}

}  // namespace tbl

struct V {
  using Px = uint8x16_t;
  static constexpr std::int32_t kBytes = sizeof(Px);
  static constexpr std::int32_t kPixels = 4;

  // ---- memory (no alignment required) ----
  static Px load(const void* p) { return vld1q_u8(static_cast<const std::uint8_t*>(p)); }
  static void store(void* p, Px v) { vst1q_u8(static_cast<std::uint8_t*>(p), v); }
  static Px load32(const void* p) { return px(vsetq_lane_u32(word(p), vdupq_n_u32(0), 0)); }

  // ---- constants ----
  static Px zero() { return vdupq_n_u8(0); }
  static Px set_px(std::uint32_t v) { return px(vdupq_n_u32(v)); }
  static Px set16(std::uint32_t v) { return px(vdupq_n_u16(static_cast<std::uint16_t>(v))); }
  static Px set16x4(std::uint16_t c0, std::uint16_t c1, std::uint16_t c2, std::uint16_t c3) {
    return px(vdupq_n_u64(c0 | std::uint64_t{c1} << 16 | std::uint64_t{c2} << 32 |
                          std::uint64_t{c3} << 48));
  }

  // ---- widening and narrowing: pixels <-> 16-bit lanes ----
  static Px widen_lo(Px x) { return px(vshll_n_u8(vget_low_u8(x), 8)); }
  static Px widen_hi(Px x) { return px(vshll_high_n_u8(x, 8)); }
  static Px zext_lo(Px x) { return px(vmovl_u8(vget_low_u8(x))); }
  static Px zext_hi(Px x) { return px(vmovl_high_u8(x)); }
  static Px pack(Px lo, Px hi) { return vqmovun_high_s16(vqmovun_s16(s16(lo)), s16(hi)); }
  static Px splat_alpha(Px x) { return tbl::lookup1<tbl::words4(3, 3, 3, 3)>(x); }
  // Permutes the four 16-bit lanes of each widened pixel: lane k takes lane (kImm >> 2k) & 3.
  template <int kImm>
  static Px shuffle16x4(Px x) {
    return tbl::lookup1<tbl::words4(kImm & 3, kImm >> 2 & 3, kImm >> 4 & 3, kImm >> 6 & 3)>(x);
  }

  // ---- 16-bit lane arithmetic ----
  // (Shifts by a count the compiler sees after inlining become shifts by an immediate.)
  static Px add16(Px a, Px b) { return px(vaddq_u16(u16(a), u16(b))); }
  static Px add8(Px a, Px b) { return vaddq_u8(a, b); }
  static Px add32(Px a, Px b) { return px(vaddq_u32(u32(a), u32(b))); }
  static Px sub16(Px a, Px b) { return px(vsubq_u16(u16(a), u16(b))); }
  static Px adds_u16(Px a, Px b) { return px(vqaddq_u16(u16(a), u16(b))); }
  static Px subs_u16(Px a, Px b) { return px(vqsubq_u16(u16(a), u16(b))); }
  static Px mullo16(Px a, Px b) { return px(vmulq_u16(u16(a), u16(b))); }
  static Px mulhi_u16(Px a, Px b) {  // the high halves of the 32-bit products
    const uint32x4_t lo = vmull_u16(vget_low_u16(u16(a)), vget_low_u16(u16(b)));
    const uint32x4_t hi = vmull_high_u16(u16(a), u16(b));
    return px(vuzp2q_u16(vreinterpretq_u16_u32(lo), vreinterpretq_u16_u32(hi)));
  }
  static Px mulhi_s16(Px a, Px b) {
    const int32x4_t lo = vmull_s16(vget_low_s16(s16(a)), vget_low_s16(s16(b)));
    const int32x4_t hi = vmull_high_s16(s16(a), s16(b));
    return px(vuzp2q_s16(vreinterpretq_s16_s32(lo), vreinterpretq_s16_s32(hi)));
  }
  static Px madd16(Px a, Px b) {  // pairs of s16 products -> s32 (wrapping, as SSE2's)
    const int32x4_t lo = vmull_s16(vget_low_s16(s16(a)), vget_low_s16(s16(b)));
    return px(vpaddq_s32(lo, vmull_high_s16(s16(a), s16(b))));
  }
  static Px srl16(Px a, int n) { return px(u16(a) >> n); }
  static Px sll16(Px a, int n) { return px(u16(a) << n); }
  static Px sra16(Px a, int n) { return px(s16(a) >> n); }
  static Px srl32(Px a, int n) { return px(u32(a) >> n); }
  static Px sll32(Px a, int n) { return px(u32(a) << n); }
  static Px sra32(Px a, int n) { return px(s32(a) >> n); }
  static Px min_s16(Px a, Px b) { return px(vminq_s16(s16(a), s16(b))); }
  static Px max_s16(Px a, Px b) { return px(vmaxq_s16(s16(a), s16(b))); }
  static Px cmpeq16(Px a, Px b) { return px(vceqq_u16(u16(a), u16(b))); }
  static Px cmpeq32(Px a, Px b) { return px(vceqq_u32(u32(a), u32(b))); }

  // ---- bitwise ----
  static Px and_(Px a, Px b) { return vandq_u8(a, b); }
  static Px or_(Px a, Px b) { return vorrq_u8(a, b); }
  static Px xor_(Px a, Px b) { return veorq_u8(a, b); }
  static Px andnot(Px a, Px b) { return vbicq_u8(b, a); }  // ~a & b

  // ---- line ends, per-pixel bytes and tables, pixel-wide 16-bit lanes ----
  static constexpr std::uintptr_t kStoreAlign = 16;

  static Px load_n(const std::uint32_t* p, std::int32_t n, std::uint32_t fill) {
    const uint32x4_t f = vdupq_n_u32(fill);
    switch (n) {
      case 0:
        return px(f);
      case 1:
        return px(vsetq_lane_u32(word(p), f, 0));
      case 2:
        return vcombine_u8(load8(p), vget_high_u8(px(f)));
      case 3:
        return vcombine_u8(load8(p),
                           vreinterpret_u8_u32(vset_lane_u32(word(p + 2), vget_high_u32(f), 0)));
      default:
        return load(p);
    }
  }
  static void store_n(std::uint32_t* p, Px v, std::int32_t n) {
    if (n >= kPixels) return store(p, v);
    if (n & 2) {
      vst1_u8(reinterpret_cast<std::uint8_t*>(p), vget_low_u8(v));
      v = vextq_u8(v, v, 8);
      p += 2;
    }
    if (n & 1) {
      const std::uint32_t x = vgetq_lane_u32(u32(v), 0);
      std::memcpy(p, &x, sizeof x);
    }
  }

  // One byte per pixel, in the first four bytes (as on SSE2).
  using Bytes = Px;
  static Bytes load_bytes(const std::uint8_t* p) { return load32(p); }
  static Bytes load_bytes_n(const std::uint8_t* p, std::int32_t n) {
    std::uint32_t v = 0;
    for (std::int32_t k = 0; k < n && k < kPixels; ++k) v |= std::uint32_t{p[k]} << (8 * k);
    return px(vsetq_lane_u32(v, vdupq_n_u32(0), 0));
  }
  static Px words_of_bytes(Bytes b) {  // 0x00MM00MM
    constexpr std::uint8_t Z = tbl::Z;
    return tbl::lookup1<tbl::Index{0, Z, 0, Z, 1, Z, 1, Z, 2, Z, 2, Z, 3, Z, 3, Z}>(b);
  }
  static Px words_of_bytes_hi(Bytes b) {  // 0xMM00MM00
    constexpr std::uint8_t Z = tbl::Z;
    return tbl::lookup1<tbl::Index{Z, 0, Z, 0, Z, 1, Z, 1, Z, 2, Z, 2, Z, 3, Z, 3}>(b);
  }
  // A 256-byte table held in sixteen registers, four lookups of 64 entries each: tbl gives zero
  // for an index past its 64 bytes, tbx leaves the byte as it was, so each quarter fills in the
  // bytes whose index, less the quarter's start, falls in it.
  struct Table {
    uint8x16x4_t q[4];  // entries 0-63, 64-127, 128-191, 192-255
  };
  static Table load_table(const std::uint8_t* t) {
    return {{vld1q_u8_x4(t), vld1q_u8_x4(t + 64), vld1q_u8_x4(t + 128), vld1q_u8_x4(t + 192)}};
  }
  static Px lookup(const Table& t, Px x) {
    Px r = vqtbl4q_u8(t.q[0], x);
    r = vqtbx4q_u8(r, t.q[1], vsubq_u8(x, vdupq_n_u8(64)));
    r = vqtbx4q_u8(r, t.q[2], vsubq_u8(x, vdupq_n_u8(128)));
    return vqtbx4q_u8(r, t.q[3], vsubq_u8(x, vdupq_n_u8(192)));
  }
  // Whole vectors of bytes, then the rest through one more lookup in scratch.
  static void map_bytes(const Table& t, const std::uint8_t* in, std::uint8_t* out, std::int32_t n) {
    std::int32_t k = 0;
    for (; k + kBytes <= n; k += kBytes) store(out + k, lookup(t, load(in + k)));
    if (k < n) {
      const auto rest = static_cast<std::size_t>(n - k);
      std::uint8_t buf[kBytes] = {};
      std::memcpy(buf, in + k, rest);
      store(buf, lookup(t, load(buf)));
      std::memcpy(out + k, buf, rest);
    }
  }

  static Px alpha_words(Px x) { return pixel_bytes<3, -1, 3, -1>(x); }
  static Px alpha_words_hi(Px x) { return pixel_bytes<-1, 3, -1, 3>(x); }
  static Px alpha_bytes(Px x) { return pixel_bytes<3, 3, 3, 3>(x); }
  static Px dup_lo16(Px x) { return pixel_bytes<0, 1, 0, 1>(x); }
  // Byte k of each pixel takes byte bk of the same pixel (-1: zero).
  template <int b0, int b1, int b2, int b3>
  static Px pixel_bytes(Px x) {
    return tbl::lookup1<tbl::bytes_by(b0, b1, b2, b3)>(x);
  }
  static Px pack_words(Px even, Px odd) {  // e0 o0 e1 o1 ...
    const uint8x8x2_t z = vzip_u8(vqmovun_s16(s16(even)), vqmovun_s16(s16(odd)));
    return vcombine_u8(z.val[0], z.val[1]);
  }
  // Each value clamped to 0..255 (to 0..65535 then to 255, as SSE2's two saturating packs do).
  static Px pack_channels(Px c0, Px c1, Px c2, Px c3) {
    const uint8x8_t c02 = vqmovn_u16(vqmovun_high_s32(vqmovun_s32(s32(c0)), s32(c2)));
    const uint8x8_t c13 = vqmovn_u16(vqmovun_high_s32(vqmovun_s32(s32(c1)), s32(c3)));
    const uint8x8x2_t pairs = vzip_u8(c02, c13);  // (c0 c1) per pixel, then (c2 c3)
    const uint16x4x2_t z =
        vzip_u16(vreinterpret_u16_u8(pairs.val[0]), vreinterpret_u16_u8(pairs.val[1]));
    return px(vcombine_u16(z.val[0], z.val[1]));
  }
  static Px select(Px m, Px a, Px b) { return vbslq_u8(m, a, b); }
  // As on SSE2 (simd/sse2.h): the estimate (8 bits) refined by two Newton steps, well within
  // 2^-17. A = 0 has an infinite reciprocal, which converts to all ones: cleared to entry 0.
  static Px reciprocal_pairs(Px x) {
    const float32x4_t a = vcvtq_f32_u32(u32(x));
    float32x4_t r = vrecpeq_f32(a);
    r = vmulq_f32(r, vrecpsq_f32(a, r));
    r = vmulq_f32(r, vrecpsq_f32(a, r));
    const uint32x4_t q = vcvtq_u32_f32(vmulq_f32(r, vdupq_n_f32(65535.5f * 65537.0f)));
    return dup_lo16(px(vandq_u32(q, vtstq_u32(u32(x), u32(x)))));
  }

  // ---- resampling, zoom and unpacking ----
  static Px sub32(Px a, Px b) { return px(vsubq_u32(u32(a), u32(b))); }
  static Px srl64(Px a, int n) { return px(vreinterpretq_u64_u8(a) >> n); }
  // x0 x0 x2 x2.
  static Px dup_even32(Px x) { return px(vtrn1q_u32(u32(x), u32(x))); }
  // a1 b1 a3 b3.
  static Px trn_odd_px(Px a, Px b) { return px(vtrn2q_u32(u32(a), u32(b))); }
  // a0 b0 a1 b1 (zip_lo), a2 b2 a3 b3 (zip_hi).
  static Px zip_lo_px(Px a, Px b) { return px(vzip1q_u32(u32(a), u32(b))); }
  static Px zip_hi_px(Px a, Px b) { return px(vzip2q_u32(u32(a), u32(b))); }
  // x0 x0 x1 x2.
  static Px repeat_first_px(Px x) { return px(vextq_u32(vdupq_laneq_u32(u32(x), 0), u32(x), 3)); }
  // prev3 cur0 cur1 cur2.
  static Px shift_in_px(Px cur, Px prev) { return px(vextq_u32(u32(prev), u32(cur), 3)); }
  // a0 a2 b0 b2 (even_px), a1 a3 b1 b3 (odd_px).
  static Px even_px(Px a, Px b) { return px(vuzp1q_u32(u32(a), u32(b))); }
  static Px odd_px(Px a, Px b) { return px(vuzp2q_u32(u32(a), u32(b))); }
  // Pixel k = base[idx_k] (any alignment).
  static Px gather_px(const std::uint32_t* base, Px idx) {
    const uint32x4_t i = u32(idx);
    uint32x4_t r = vdupq_n_u32(word(base + vgetq_lane_u32(i, 0)));
    r = vsetq_lane_u32(word(base + vgetq_lane_u32(i, 1)), r, 1);
    r = vsetq_lane_u32(word(base + vgetq_lane_u32(i, 2)), r, 2);
    return px(vsetq_lane_u32(word(base + vgetq_lane_u32(i, 3)), r, 3));
  }
  // Pixels 2m and 2m + 1 of `even` are base[idx_2m] and base[idx_2m + 1], those of `odd`
  // base[idx_2m+1] and base[idx_2m+1 + 1].
  static void gather_px_pairs(const std::uint32_t* base, Px idx, Px& even, Px& odd) {
    const uint32x4_t i = u32(idx);
    even = vcombine_u8(load8(base + vgetq_lane_u32(i, 0)), load8(base + vgetq_lane_u32(i, 2)));
    odd = vcombine_u8(load8(base + vgetq_lane_u32(i, 1)), load8(base + vgetq_lane_u32(i, 3)));
  }
  // Pixel k = pixel idx_k of a (idx_k < 4).
  static Px permute_px(Px a, Px idx) { return vqtbl1q_u8(a, pixel_indices(idx)); }
  // Pixel k = pixel idx_k of the eight pixels of a, then b (idx_k < 8).
  static Px permute_px2(Px a, Px b, Px idx) {
    return vqtbl2q_u8(uint8x16x2_t{{a, b}}, pixel_indices(idx));
  }
  // Byte k = byte kIdx[k] of the 32 bytes of a, then b (byte_plan::kZero, past them: zero), kIdx
  // a std::array of 16 byte indices fixed at compile time.
  template <const auto& kIdx>
  static Px permute_bytes2(Px a, Px b) {
    return vqtbl2q_u8(uint8x16x2_t{{a, b}}, vld1q_u8(kIdx.data()));
  }
  static Px concat_lo(Px a, Px b) { return px(vzip1q_u64(u64(a), u64(b))); }
  static Px concat_hi(Px a, Px b) { return px(vzip2q_u64(u64(a), u64(b))); }
  // Byte 0 of each pixel as a 16-bit value in all four lanes of that pixel, the pixels laid out
  // as zext_lo (lo) and zext_hi (hi) lay them out.
  static void spread_byte0(Px x, Px& lo, Px& hi) {
    constexpr std::uint8_t Z = tbl::Z;
    lo = tbl::lookup1<tbl::Index{0, Z, 0, Z, 0, Z, 0, Z, 4, Z, 4, Z, 4, Z, 4, Z}>(x);
    hi = tbl::lookup1<tbl::Index{8, Z, 8, Z, 8, Z, 8, Z, 12, Z, 12, Z, 12, Z, 12, Z}>(x);
  }
  static std::uint32_t lane0(Px x) { return vgetq_lane_u32(u32(x), 0); }
  static Px load64(const void* p) { return vcombine_u8(load8(p), vdup_n_u8(0)); }

 private:
  // Byte indices of the pixels idx_k (each < 64): 4 idx_k + 0, 1, 2, 3.
  static Px pixel_indices(Px idx) {
    return px(vmlaq_n_u32(vdupq_n_u32(0x03020100u), u32(idx), 0x04040404u));
  }
  static std::uint32_t word(const void* p) {
    std::uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
  }
  static uint8x8_t load8(const void* p) { return vld1_u8(static_cast<const std::uint8_t*>(p)); }

  static uint16x8_t u16(Px x) { return vreinterpretq_u16_u8(x); }
  static int16x8_t s16(Px x) { return vreinterpretq_s16_u8(x); }
  static uint32x4_t u32(Px x) { return vreinterpretq_u32_u8(x); }
  static int32x4_t s32(Px x) { return vreinterpretq_s32_u8(x); }
  static uint64x2_t u64(Px x) { return vreinterpretq_u64_u8(x); }
  static Px px(Px x) { return x; }
  static Px px(uint16x8_t x) { return vreinterpretq_u8_u16(x); }
  static Px px(int16x8_t x) { return vreinterpretq_u8_s16(x); }
  static Px px(uint32x4_t x) { return vreinterpretq_u8_u32(x); }
  static Px px(int32x4_t x) { return vreinterpretq_u8_s32(x); }
  static Px px(uint64x2_t x) { return vreinterpretq_u8_u64(x); }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::neon
