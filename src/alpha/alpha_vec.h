// Vector arithmetic of qx_alpha and qx_mask over a vector policy V (see simd/). Include only from a
// translation unit built for V's instruction set.
#pragma once

#include <cstdint>

namespace qx {

// Each pixel's alpha into all four of its bytes, by shifts (for instruction sets without a byte
// shuffle).
template <class V>
inline typename V::Px alpha_group(typename V::Px x) {
  const typename V::Px a = V::srl32(x, 24);             // 00 00 00 A
  const typename V::Px aa = V::or_(a, V::sll32(a, 8));  // 00 00 A A
  return V::or_(aa, V::sll32(aa, 16));                  // A A A A
}

// Colour bytes kept, alpha replaced by floor(A * m / 256) with m the pixel's byte of `mask`.
// In each pixel's upper 16-bit lane A * 256 meets m (the lower lanes meet 0), so the unsigned
// multiply-high yields A * m >> 8 there, and an 8-bit shift of the 32-bit lane lands it in byte 3.
template <class V>
inline typename V::Px mask_group(typename V::Px x, const std::uint8_t* mask) {
  const typename V::Px alpha_bits = V::set_px(0xFF000000u);
  const typename V::Px a = V::and_(x, alpha_bits);                                 // A * 256 : 0
  const typename V::Px m = V::and_(V::splat_bytes(mask), V::set_px(0x00FF0000u));  // m : 0
  const typename V::Px scaled = V::sll32(V::mulhi_u16(a, m), 8);
  return V::or_(V::andnot(alpha_bits, x), scaled);
}

}  // namespace qx
