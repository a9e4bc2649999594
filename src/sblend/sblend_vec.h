// The qx_sblend compositing step on whole vectors (see sblend.h for the per-pixel formula).
// Include only from a translation unit built for V's instruction set.
#pragma once

#include <cstdint>

namespace qx {

struct SblendArith {
  template <class V>
  static typename V::Px group(typename V::Px bg, typename V::Px fg, typename V::Px w_lo,
                              typename V::Px w_hi) {
    using Px = typename V::Px;
    const Px c255 = V::set16(255);
    // Aout = F + (B * 256) * (255 - F) / 65536, in every lane of its pixel.
    const Px aout_lo =
        V::add16(w_lo, V::mulhi_u16(V::splat_alpha(V::widen_lo(bg)), V::subs_u16(c255, w_lo)));
    const Px aout_hi =
        V::add16(w_hi, V::mulhi_u16(V::splat_alpha(V::widen_hi(bg)), V::subs_u16(c255, w_hi)));
    // One ReciprocalTable entry per pixel, in all four of its lanes.
    const Px r_lo = V::reciprocal_px(aout_lo);
    const Px r_hi = V::reciprocal_px(aout_hi);
    // K = R * F / 256; R * F <= 65535 because F <= Aout.
    const Px k_lo = V::srl16(V::mullo16(r_lo, w_lo), 8);
    const Px k_hi = V::srl16(V::mullo16(r_hi, w_hi), 8);
    // bg + floor(K * (fg - bg) / 256) in the low byte: the wrapped 16-bit product shifted
    // logically differs from the floor by a multiple of 256 only.
    const Px colour = V::set16x4(0xFF, 0xFF, 0xFF, 0);
    const Px alpha = V::set16x4(0, 0, 0, 0xFF);
    const Px b_lo = V::zext_lo(bg), b_hi = V::zext_hi(bg);
    const Px x_lo = V::add16(b_lo, V::srl16(V::mullo16(V::sub16(V::zext_lo(fg), b_lo), k_lo), 8));
    const Px x_hi = V::add16(b_hi, V::srl16(V::mullo16(V::sub16(V::zext_hi(fg), b_hi), k_hi), 8));
    return V::pack(V::or_(V::and_(x_lo, colour), V::and_(aout_lo, alpha)),
                   V::or_(V::and_(x_hi, colour), V::and_(aout_hi, alpha)));
  }
};

}  // namespace qx
