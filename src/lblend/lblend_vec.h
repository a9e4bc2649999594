// The qx_lblend arithmetic on one vector of pixels, over a vector policy V (see simd/).
// Include only from a translation unit built for V's instruction set.
#pragma once

namespace qx {

struct LblendArith {
  // w_lo / w_hi: each pixel's weight w (0..255) in all four of its 16-bit lanes.
  template <class V>
  static typename V::Px group(typename V::Px bg, typename V::Px fg, typename V::Px w_lo,
                              typename V::Px w_hi) {
    using Px = typename V::Px;
    // Background weight 256 - w on the colour lanes; the alpha lane's weight is cleared first, so
    // it stays 256 and the background alpha passes whole into the sum.
    const Px k256 = V::set16(256);
    const Px colour = V::set16x4(0xFFFF, 0xFFFF, 0xFFFF, 0);
    const Px wb_lo = V::subs_u16(k256, V::and_(w_lo, colour));
    const Px wb_hi = V::subs_u16(k256, V::and_(w_hi, colour));
    // Bytes widened as x * 256, so the high half of each product is x * weight / 256, truncated
    // on its own. Colour sums stay <= 255; the alpha sum saturates in the pack.
    const Px lo =
        V::add16(V::mulhi_u16(V::widen_lo(bg), wb_lo), V::mulhi_u16(V::widen_lo(fg), w_lo));
    const Px hi =
        V::add16(V::mulhi_u16(V::widen_hi(bg), wb_hi), V::mulhi_u16(V::widen_hi(fg), w_hi));
    return V::pack(lo, hi);
  }
};

}  // namespace qx
