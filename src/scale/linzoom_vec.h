// Vector arithmetic of qx_lin_pix and the zoom-in functions over a vector policy V (see simd/).
// Include only from a translation unit built for V's instruction set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qx {

// Per byte floor((x + y) / 2) = (x & y) + ((x ^ y) >> 1). The 16-bit shift moves one bit across
// each byte boundary, which the 0x7F mask clears; each byte's sum is at most 255, so the 16-bit
// add carries nothing into its neighbour.
template <class V>
inline typename V::Px floor_avg(typename V::Px x, typename V::Px y) {
  const typename V::Px half = V::and_(V::srl16(V::xor_(x, y), 1), V::set16(0x7F7F));
  return V::add16(V::and_(x, y), half);
}

// a * w / 256 + b * iw / 256 per byte, each product the high half of (byte * 256) * weight lane.
template <class V>
inline typename V::Px lin_pix_group(typename V::Px a, typename V::Px b, typename V::Px w,
                                    typename V::Px iw) {
  const typename V::Px lo =
      V::add16(V::mulhi_u16(V::widen_lo(a), w), V::mulhi_u16(V::widen_lo(b), iw));
  const typename V::Px hi =
      V::add16(V::mulhi_u16(V::widen_hi(a), w), V::mulhi_u16(V::widen_hi(b), iw));
  return V::pack(lo, hi);
}

// dst[i] = floor_avg(a[i], b[i]) for i < n, n a multiple of 4; dst is neither a nor b. After the
// first vector the vectors start where their stores fall on vector boundaries, and the last one
// ends at n; both may overlap pixels already done, rewriting them with the same values. A line
// narrower than a vector goes through zeroed scratch, so nothing past pixel n - 1 is read or
// written.
template <class V>
inline void average_rows(std::uint32_t* dst, const std::uint32_t* a, const std::uint32_t* b,
                         std::ptrdiff_t n) {
  constexpr std::ptrdiff_t P = V::kPixels;
  const auto at = [=](std::ptrdiff_t i) {
    V::store(dst + i, floor_avg<V>(V::load(a + i), V::load(b + i)));
  };
  if (n >= P) {
    at(0);
    constexpr std::uintptr_t kBytes = 4 * P;
    const std::uintptr_t past = reinterpret_cast<std::uintptr_t>(dst) % kBytes;
    std::ptrdiff_t i = P;
    if (past != 0 && past % 4 == 0) i = static_cast<std::ptrdiff_t>((kBytes - past) / 4);
    for (const std::ptrdiff_t last = n - P; i <= last; i += P) at(i);
    if (i < n) at(n - P);
  } else if (n > 0) {
    const std::size_t bytes = sizeof(std::uint32_t) * static_cast<std::size_t>(n);
    alignas(64) std::uint32_t sa[P] = {}, sb[P] = {}, out[P];
    std::memcpy(sa, a, bytes);
    std::memcpy(sb, b, bytes);
    V::store(out, floor_avg<V>(V::load(sa), V::load(sb)));
    std::memcpy(dst, out, bytes);
  }
}

}  // namespace qx
