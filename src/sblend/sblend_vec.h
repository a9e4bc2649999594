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
    // floor(K * (fg - bg) / 256) as a byte of the wrapped 16-bit product K * (fg - bg): its high
    // byte, shifted down for bytes 0 and 2, in place for byte 1. Added to bg bytewise (the sum
    // always lies between bg and fg, so the wrap is exact); alpha is Aout.
    const Px low = V::set_px(0x00FF00FFu);
    const Px d_even = V::sub16(V::and_(fg, low), V::and_(bg, low));
    const Px d_odd = V::sub16(V::srl16(fg, 8), V::srl16(bg, 8));
    const Px delta = V::select(low, V::srl16(V::mullo16(d_even, k), 8), V::mullo16(d_odd, k));
    return V::select(V::set_px(0xFF000000u), V::sll32(aout, 24), V::add8(bg, delta));
  }
};

}  // namespace qx
