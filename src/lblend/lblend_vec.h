// The qx_lblend arithmetic on one vector of pixels, over a vector policy V (see lblend.h for the
// formula and frame/family_vec.h for the lane layout). Include only from a translation unit built
// for V's instruction set.
#pragma once

namespace qx {

struct LblendArith {
  template <class V>
  static typename V::Px group(typename V::Px bg, typename V::Px fg, typename V::Px w) {
    using Px = typename V::Px;
    const Px low = V::set_px(0x00FF00FFu);     // bytes 0 and 2
    const Px wb = V::sub16(V::set16(256), w);  // background weight 256 - w
    // Bytes as x * 256, so the high half of each product is x * weight / 256, truncated on its own.
    const Px even = V::add16(V::mulhi_u16(V::sll16(bg, 8), wb), V::mulhi_u16(V::sll16(fg, 8), w));
    // Byte 1 and alpha: the background alpha's weight is 256, so bg.a passes whole into its sum,
    // which saturates at 255 (the colour sums stay <= 255).
    const Px wb_odd = V::select(V::set_px(0x0000FFFFu), wb, V::set16(256));
    Px odd =
        V::add16(V::mulhi_u16(V::andnot(low, bg), wb_odd), V::mulhi_u16(V::andnot(low, fg), w));
    odd = V::min_s16(odd, V::set16(255));
    return V::or_(even, V::sll16(odd, 8));
  }
};

}  // namespace qx
