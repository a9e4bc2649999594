// The AVX-512 VBMI vector policy: the AVX-512 policy (simd/avx512.h) plus the byte permutes across
// a whole register, which hold a 256-byte table in four registers and look 64 bytes up at once.
// Include only from translation units built with -mavx512vbmi; everything lives in qx::avx512vbmi.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "frame/unit.h"
#include "simd/avx512.h"

namespace qx::avx512vbmi {
inline namespace QX_UNIT_NS {

struct V : avx512::V {
  // ---- byte tables in registers ----
  struct Table {
    const std::uint8_t* t;
    Px q[4];  // entries 0-63, 64-127, 128-191, 192-255
  };
  static Table load_table(const std::uint8_t* t) {
    return {t, {load(t), load(t + 64), load(t + 128), load(t + 192)}};
  }
  static void map_bytes(const Table& t, const std::uint8_t* in, std::uint8_t* out, std::int32_t n) {
    std::int32_t k = 0;
    for (; k + kBytes <= n; k += kBytes) store(out + k, lookup(t, load(in + k)));
    if (k < n) {
      const __mmask64 rest = (std::uint64_t{1} << (n - k)) - 1;  // n - k < 64
      _mm512_mask_storeu_epi8(out + k, rest, lookup(t, _mm512_maskz_loadu_epi8(rest, in + k)));
    }
  }
  // Bits 0-6 of a byte index a pair of registers (128 entries), bit 7 picks the pair.
  static Px lookup(const Table& t, Px x) {
    const Px lo = _mm512_permutex2var_epi8(t.q[0], x, t.q[1]);
    const Px hi = _mm512_permutex2var_epi8(t.q[2], x, t.q[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(x), lo, hi);
  }

  // ---- resampling, zoom and unpacking ----
  // Byte k = byte kIdx[k] of the 128 bytes of a, then b (byte_plan::kZero: zero), kIdx a
  // std::array of 64 byte indices fixed at compile time.
  template <const auto& kIdx>
  static Px permute_bytes2(Px a, Px b) {
    alignas(64) static constexpr auto kTable = [] {
      struct {
        alignas(64) std::uint8_t idx[64];
        std::uint64_t zero;  // bit k: byte k is zero
      } t{};
      for (int k = 0; k < 64; ++k) {
        t.idx[k] = kIdx[k] == byte_plan::kZero ? 0 : kIdx[k];
        if (kIdx[k] == byte_plan::kZero) t.zero |= std::uint64_t{1} << k;
      }
      return t;
    }();
    const Px moved = _mm512_permutex2var_epi8(a, _mm512_load_si512(kTable.idx), b);
    if constexpr (kTable.zero == 0)
      return moved;
    else
      return _mm512_maskz_mov_epi8(~kTable.zero, moved);
  }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::avx512vbmi
