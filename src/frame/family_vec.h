// Vector form of one blend-family line over a vector policy V (see simd/). The family's arithmetic
// is Arith::group<V>(bg, fg, w_lo, w_hi) -> V::Px, where w_lo and w_hi hold each pixel's weight w
// (0..255) in all four 16-bit lanes of that pixel, laid out as V::widen_lo and V::widen_hi lay out
// the pixels. Include only from a translation unit built for V's instruction set.
#pragma once

#include <cstdint>

#include "frame/family.h"
#include "frame/line.h"
#include "frame/unit.h"

namespace qx {
inline namespace QX_UNIT_NS {

template <class V, Weight kW, class Arith>
inline void vector_family_line(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                               std::int32_t count, const std::uint8_t* mask,
                               const std::uint8_t* lut, std::uint32_t opacity) {
  using Px = typename V::Px;
  const Px t = V::set16(clamp256(opacity));  // T in every lane, for the whole call
  vector_line<V, FamilyShape<kW>>(
      Lines{dst, bg, fg, mask, count}, [&](Px b, Px f, auto... mask_group) {
        // fg.a * 256 in every lane of its pixel.
        const Px a_lo = V::splat_alpha(V::widen_lo(f));
        const Px a_hi = V::splat_alpha(V::widen_hi(f));
        Px w_lo, w_hi;
        if constexpr (kW == Weight::kAlpha) {
          w_lo = V::srl16(a_lo, 8);
          w_hi = V::srl16(a_hi, 8);
        } else if constexpr (kW == Weight::kOpacity) {
          w_lo = V::mulhi_u16(a_lo, t);  // fg.a * T / 256
          w_hi = V::mulhi_u16(a_hi, t);
        } else {
          const std::uint8_t* m = nullptr;
          ((m = mask_group), ...);
          Px bytes;  // each pixel's mask (or table) byte in all four of its bytes
          if constexpr (kW == Weight::kLutOpacity) {
            alignas(16) std::uint8_t mapped[V::kPixels];
            for (std::int32_t k = 0; k < V::kPixels; ++k) mapped[k] = lut[m[k]];
            bytes = V::splat_bytes(mapped);
          } else {
            bytes = V::splat_bytes(m);
          }
          Px f_lo = V::zext_lo(bytes);
          Px f_hi = V::zext_hi(bytes);
          if constexpr (kW != Weight::kMask) {  // m * T <= 65280: the low half is exact
            f_lo = V::srl16(V::mullo16(f_lo, t), 8);
            f_hi = V::srl16(V::mullo16(f_hi, t), 8);
          }
          w_lo = V::mulhi_u16(a_lo, f_lo);  // fg.a * f / 256
          w_hi = V::mulhi_u16(a_hi, f_hi);
        }
        return Arith::template group<V>(b, f, w_lo, w_hi);
      });
}

}  // namespace QX_UNIT_NS
}  // namespace qx

// Inside the vector namespace of a per-instruction-set unit (where V is that set's policy):
// defines the five functions of family `base` from its arithmetic Arith.
#define QX_DEFINE_VECTOR_FAMILY(base, Arith)                                         \
  namespace {                                                                        \
  template <::qx::Weight kW>                                                         \
  void base##_line(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, \
                   std::int32_t n, const std::uint8_t* m, const std::uint8_t* l,     \
                   std::uint32_t o) {                                                \
    ::qx::vector_family_line<V, kW, Arith>(d, b, f, n, m, l, o);                     \
  }                                                                                  \
  }                                                                                  \
  QX_DEFINE_FAMILY(base, base##_line)
