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
    Px q[4];  // entries 0-63, 64-127, 128-191, 192-255
  };
  static Table load_table(const std::uint8_t* t) {
    return {{load(t), load(t + 64), load(t + 128), load(t + 192)}};
  }
  // Bits 0-6 of a byte index a pair of registers (128 entries), bit 7 picks the pair.
  static Bytes lookup(const Table& t, Bytes b) {
    const Px lo = _mm512_permutex2var_epi8(t.q[0], b, t.q[1]);
    const Px hi = _mm512_permutex2var_epi8(t.q[2], b, t.q[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(b), lo, hi);
  }
};

}  // namespace QX_UNIT_NS
}  // namespace qx::avx512vbmi
