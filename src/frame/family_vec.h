// Vector form of one blend-family line over a vector policy V (see simd/). The family's arithmetic
// is Arith::group<V>(bg, fg, w) -> V::Px, where w holds each pixel's weight w (0..255) in both
// 16-bit halves of the pixel's 32-bit lane. Include only from a translation unit built for V's
// instruction set.
//
// The arithmetic works on the pixels where they lie: a 32-bit pixel is two 16-bit lanes, bytes 0
// and 2 in their low halves and bytes 1 and 3 (alpha) in their high halves. Masking or shifting
// by 8 isolates either pair (as x or as x * 256), so each channel's product is one 16-bit
// multiplication, as with bytes widened to lanes of their own, without the unpacking and packing.
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
  const auto group = [&](Px b, Px f, auto... mask_bytes) {
    // w = fg.a * f / 256 in both halves of each pixel, as the high half of a 16-bit product of one
    // factor as x * 256 and the other as x; likewise m * T / 256 for _mt.
    Px w = V::alpha_words(f);
    if constexpr (kW == Weight::kOpacity) {
      w = V::mulhi_u16(V::alpha_words_hi(f), t);
    } else if constexpr (kW == Weight::kMask || kW == Weight::kLutOpacity) {
      ((w = V::mulhi_u16(w, V::words_of_bytes_hi(mask_bytes))), ...);
    } else if constexpr (kW == Weight::kMaskOpacity) {
      ((w = V::mulhi_u16(V::alpha_words_hi(f), V::mulhi_u16(V::words_of_bytes_hi(mask_bytes), t))),
       ...);
    }
    return Arith::template group<V>(b, f, w);
  };
  const Lines lines{dst, bg, fg, mask, count};
  if constexpr (kW == Weight::kLutOpacity) {
    // _mlt: the table with T folded in, lut[m] * T / 256 (exact: at most 65280 before the shift),
    // built once per call; the frame maps the mask through it, whole vectors of bytes per lookup,
    // and the groups take the _m arithmetic on the mapped bytes.
    constexpr std::int32_t kBytes = sizeof(Px);
    static_assert(256 % kBytes == 0, "whole vectors of table bytes");
    alignas(64) std::uint8_t scaled[256];
    for (std::int32_t k = 0; k < 256; k += kBytes) {
      const Px x = V::load(lut + k);
      V::store(scaled + k,
               V::pack(V::mulhi_u16(V::widen_lo(x), t), V::mulhi_u16(V::widen_hi(x), t)));
    }
    const auto table = V::load_table(scaled);
    vector_line<V, FamilyShape<kW>>(lines, group,
                                    [&](const std::uint8_t* in, std::uint8_t* out, std::int32_t n) {
                                      V::map_bytes(table, in, out, n);
                                    });
  } else {
    vector_line<V, FamilyShape<kW>>(lines, group);
  }
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
