// The ARGB <-> AYUV arithmetic on vectors, written once over a vector policy V (see simd/). Each
// function maps V::kPixels pixels to as many pixels, with exactly the bytes of the scalar forms.
#pragma once

#include "convert/convert.h"
#include "frame/unit.h"

namespace qx::color_vec {
inline namespace QX_UNIT_NS {

// Lane selectors for V::shuffle16x4 (lane k of a pixel takes lane (imm >> 2k) & 3).
constexpr int lanes(int l0, int l1, int l2, int l3) { return l0 | l1 << 2 | l2 << 4 | l3 << 6; }

template <class V>
typename V::Px c16(std::int32_t c0, std::int32_t c1, std::int32_t c2, std::int32_t c3) {
  return V::set16x4(static_cast<std::uint16_t>(c0), static_cast<std::uint16_t>(c1),
                    static_cast<std::uint16_t>(c2), static_cast<std::uint16_t>(c3));
}

// Widened lanes per pixel: B, G, R, A in, U, Y, V, A out. Each input channel, times 128, is
// broadcast into the U, Y and V lanes of its pixel (its alpha lane keeps A * 128) and multiplied by
// its coefficients with a signed multiply-high: (c * 128 * v) >> 16 = floor(c * v / 512), each
// product floored on its own. Alpha meets 8192 in the G row and 0 elsewhere, so its lane sums to
// A * 16 and comes out as A after the shift by 4.
template <class V>
typename V::Px argb2ayuv(typename V::Px px) {
  using namespace yuv;
  const auto from_r = c16<V>(kUFromR, kYFromR, kVFromR, 0);
  const auto from_g = c16<V>(kUFromG, kYFromG, kVFromG, 8192);
  const auto from_b = c16<V>(kUFromB, kYFromB, kVFromB, 0);
  const auto offset = c16<V>(kUOffset, kYOffset, kVOffset, 0);
  const auto half = [&](typename V::Px x) {
    x = V::sll16(x, 7);
    auto sum = V::mulhi_s16(V::template shuffle16x4<lanes(2, 2, 2, 3)>(x), from_r);
    sum = V::add16(sum, V::mulhi_s16(V::template shuffle16x4<lanes(1, 1, 1, 3)>(x), from_g));
    sum = V::add16(sum, V::mulhi_s16(V::template shuffle16x4<lanes(0, 0, 0, 3)>(x), from_b));
    return V::add16(V::sra16(sum, 4), offset);
  };
  return V::pack(half(V::zext_lo(px)), half(V::zext_hi(px)));
}

// Widened lanes per pixel: U, Y, V, A in, B, G, R, A out. With the offsets removed, one
// multiply-add on (u, y, v, y) gives the 32-bit sums of B and R, another on (u, y, v, a) the two
// green sums side by side. B and R are shifted right by 13. The green sums are shifted left by 3
// so that their upper halves are the two floored parts, then swapped with each other and added as
// 16-bit halves: the upper half of the first holds the sum of the two floored parts. Lane masks
// merge B, G, R and the untouched alpha before the saturating pack.
template <class V>
typename V::Px ayuv2argb(typename V::Px px) {
  using namespace yuv;
  const auto offset = c16<V>(kUOffset, kYOffset, kVOffset, kYOffset);
  const auto br_coef = c16<V>(kBFromU, kFromY, kRFromV, kFromY);
  const auto g_coef = c16<V>(kGFromU, kFromY, kGFromV, 0);
  const auto keep_br = c16<V>(-1, 0, -1, 0);
  const auto keep_g = c16<V>(0, -1, 0, 0);
  const auto keep_a = c16<V>(0, 0, 0, -1);
  const auto half = [&](typename V::Px x) {
    const auto d = V::sub16(x, offset);
    const auto br = V::sra32(V::madd16(V::template shuffle16x4<lanes(0, 1, 2, 1)>(d), br_coef), 13);
    auto g = V::sll32(V::madd16(d, g_coef), 3);
    g = V::add16(g, V::template shuffle16x4<lanes(2, 3, 0, 1)>(g));
    return V::or_(V::or_(V::and_(br, keep_br), V::and_(g, keep_g)), V::and_(x, keep_a));
  };
  return V::pack(half(V::zext_lo(px)), half(V::zext_hi(px)));
}

}  // namespace QX_UNIT_NS
}  // namespace qx::color_vec
