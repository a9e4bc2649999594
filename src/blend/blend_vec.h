// The qx_blend arithmetic on vectors of pixels, over a vector policy V.
#pragma once

namespace qx {

struct BlendArith {
  // One half (two pixels for SSE2) in 16-bit lanes; w holds each pixel's weight in all its lanes.
  template <class V>
  static typename V::Px half(typename V::Px bg, typename V::Px fg, typename V::Px w) {
    using Px = typename V::Px;
    const Px alpha255 = V::set16x4(0, 0, 0, 0xFF00);      // alpha lane as 255 * 256 in both inputs
    const Px ba = V::splat_alpha(bg);                     // bg.a * 256
    const Px p = V::mulhi_u16(ba, V::or_(bg, alpha255));  // bg.c * bg.a, alpha lane 255 * bg.a
    const Px v = V::subs_u16(V::set16(256), w);
    return V::add16(V::mulhi_u16(V::or_(fg, alpha255), w),  // fg.c * w / 256
                    V::mulhi_u16(p, v));                    // p * v / 65536
  }

  template <class V>
  static typename V::Px group(typename V::Px bg, typename V::Px fg, typename V::Px w_lo,
                              typename V::Px w_hi) {
    return V::pack(half<V>(V::widen_lo(bg), V::widen_lo(fg), w_lo),
                   half<V>(V::widen_hi(bg), V::widen_hi(fg), w_hi));
  }
};

}  // namespace qx
