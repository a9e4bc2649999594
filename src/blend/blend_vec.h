// The qx_blend arithmetic on vectors of pixels, over a vector policy V (see blend.h for the
// formula and frame/family_vec.h for the lane layout).
#pragma once

namespace qx {

struct BlendArith {
  template <class V>
  static typename V::Px group(typename V::Px bg, typename V::Px fg, typename V::Px w) {
    using Px = typename V::Px;
    const Px low = V::set_px(0x00FF00FFu);           // bytes 0 and 2
    const Px v = V::sub16(V::set16(256), w);         // 256 - w
    const Px q = V::mullo16(V::alpha_words(bg), v);  // bg.a * v <= 65280
    // fg.c * w / 256 + bg.c * q / 65536 = fg.c * w / 256 + (bg.c * bg.a) * v / 65536, with
    // fg.c as x * 256 and bg.c as x; each sum is at most 254.
    const Px even = V::add16(V::mulhi_u16(V::sll16(fg, 8), w), V::mulhi_u16(V::and_(bg, low), q));
    // Byte 1 and alpha; alpha counts as 255 in both inputs.
    const Px fg_odd = V::or_(V::andnot(low, fg), V::set_px(0xFF000000u));  // x * 256
    const Px bg_odd = V::or_(V::srl16(bg, 8), V::set_px(0x00FF0000u));     // x
    const Px odd = V::add16(V::mulhi_u16(fg_odd, w), V::mulhi_u16(bg_odd, q));
    return V::or_(even, V::sll16(odd, 8));
  }
};

}  // namespace qx
