// The qx_sblend compositing step on whole vectors (see sblend.h for the per-pixel formula and
// frame/family_vec.h for the lane layout). Include only from a translation unit built for V's
// instruction set.
#pragma once

#include <cstdint>

namespace qx {

struct SblendArith {
  template <class V>
  static typename V::Px group(typename V::Px bg, typename V::Px fg, typename V::Px f) {
    using Px = typename V::Px;
    // Aout = F + (B * 256) * (255 - F) / 65536, in both halves of its pixel.
    const Px aout = V::add16(f, V::mulhi_u16(V::alpha_words_hi(bg), V::sub16(V::set16(255), f)));
    // K = ReciprocalTable[Aout] * F / 256; the product is at most 65535 because F <= Aout.
    const Px k = V::srl16(V::mullo16(V::reciprocal_pairs(aout), f), 8);
    // bg + floor(K * (fg - bg) / 256) in the low byte of each 16-bit lane, bytes 0 and 2 in one
    // vector and bytes 1 and 3 in another: the wrapped 16-bit product shifted logically differs
    // from the floor by a multiple of 256 only.
    const Px low = V::set_px(0x00FF00FFu);
    const Px bg_even = V::and_(bg, low), bg_odd = V::srl16(bg, 8);
    const Px even =
        V::add16(bg_even, V::srl16(V::mullo16(V::sub16(V::and_(fg, low), bg_even), k), 8));
    const Px odd = V::add16(bg_odd, V::srl16(V::mullo16(V::sub16(V::srl16(fg, 8), bg_odd), k), 8));
    // Byte 1 from odd, alpha from Aout, then bytes 0 and 2 from even.
    const Px odd_aout = V::select(V::set_px(0xFFFF0000u), aout, odd);
    return V::select(low, even, V::sll16(odd_aout, 8));
  }
};

}  // namespace qx
