// The ARGB <-> AYUV arithmetic on vectors, written once over a vector policy V (see simd/). Each
// function maps V::kPixels pixels to as many pixels, with exactly the bytes of the scalar forms.
#pragma once

#include "convert/convert.h"
#include "frame/unit.h"

namespace qx::color_vec {
inline namespace QX_UNIT_NS {

// A 32-bit constant with `lo` in the low 16-bit half of every pixel and `hi` in the high one.
template <class V>
inline typename V::Px halves(std::int32_t lo, std::int32_t hi) {
  return V::set_px(static_cast<std::uint32_t>(lo & 0xFFFF) | static_cast<std::uint32_t>(hi) << 16);
}

// Each pixel as two 16-bit lanes: outputs U (byte 0) and V (byte 2) in one vector, Y (byte 1) and
// A (byte 3) in another. Each input channel, times 128, meets its coefficients with a signed
// multiply-high: (c * 128 * v) >> 16 = floor(c * v / 512), each product floored on its own. The
// inputs are laid out so that three products per lane suffice: (B, R) and (R, B) from bytes 0 and
// 2, (G, A) from bytes 1 and 3 and (G, G). Alpha meets 8192 in the Y vector, so its lane sums to
// A * 16 and comes out as A after the shift by 4.
template <class V>
inline typename V::Px argb2ayuv(typename V::Px px) {
  using namespace yuv;
  const auto br = V::sll16(V::and_(px, V::set_px(0x00FF00FFu)), 7);    // B, R * 128
  const auto rb = V::template pixel_bytes<2, 3, 0, 1>(br);             // R, B * 128
  const auto ga = V::srl16(V::andnot(V::set_px(0x00FF00FFu), px), 1);  // G, A * 128
  const auto gg = V::dup_lo16(ga);                                     // G, G * 128
  auto uv = V::mulhi_s16(rb, halves<V>(kUFromR, kVFromB));
  uv = V::add16(uv, V::mulhi_s16(gg, halves<V>(kUFromG, kVFromG)));
  uv = V::add16(uv, V::mulhi_s16(br, halves<V>(kUFromB, kVFromR)));
  auto ya = V::mulhi_s16(rb, halves<V>(kYFromR, 0));
  ya = V::add16(ya, V::mulhi_s16(ga, halves<V>(kYFromG, 8192)));
  ya = V::add16(ya, V::mulhi_s16(br, halves<V>(kYFromB, 0)));
  return V::pack_words(V::add16(V::sra16(uv, 4), halves<V>(kUOffset, kVOffset)),
                       V::add16(V::sra16(ya, 4), halves<V>(kYOffset, 0)));
}

// With the offsets removed from (U, Y) and (V, Y) as the two 16-bit lanes of each pixel, one
// multiply-add each gives the 32-bit sums of B and R, and two more the two green sums; each sum is
// shifted right by 13 on its own (green is the sum of the two floored parts). The four channels
// are packed with saturation, alpha untouched.
template <class V>
inline typename V::Px ayuv2argb(typename V::Px px) {
  using namespace yuv;
  const auto offset = halves<V>(kUOffset, kYOffset);
  const auto uy = V::sub16(V::template pixel_bytes<0, -1, 1, -1>(px), offset);
  const auto vy = V::sub16(V::template pixel_bytes<2, -1, 1, -1>(px), offset);
  const auto b = V::sra32(V::madd16(uy, halves<V>(kBFromU, kFromY)), 13);
  const auto r = V::sra32(V::madd16(vy, halves<V>(kRFromV, kFromY)), 13);
  const auto g = V::add32(V::sra32(V::madd16(uy, halves<V>(kGFromU, kFromY)), 13),
                          V::sra32(V::madd16(vy, halves<V>(kGFromV, 0)), 13));
  return V::pack_channels(b, g, r, V::srl32(px, 24));
}

}  // namespace QX_UNIT_NS
}  // namespace qx::color_vec
