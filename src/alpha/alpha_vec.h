// Vector arithmetic of qx_alpha and qx_mask over a vector policy V (see simd/). Include only from a
// translation unit built for V's instruction set.
#pragma once

namespace qx {

// Each pixel's alpha into all four of its bytes.
template <class V>
inline typename V::Px alpha_group(typename V::Px x) {
  return V::alpha_bytes(x);
}

// Colour bytes kept, alpha replaced by floor(A * m / 256) with m the pixel's mask byte. The 16-bit
// product of A (the pixel's upper half shifted down by 8) and m has floor(A * m / 256) as its high
// byte, which is byte 3 of the pixel.
template <class V>
inline typename V::Px mask_group(typename V::Px x, typename V::Bytes m) {
  const typename V::Px product = V::mullo16(V::srl16(x, 8), V::words_of_bytes(m));
  return V::select(V::set_px(0xFF000000u), product, x);
}

}  // namespace qx
