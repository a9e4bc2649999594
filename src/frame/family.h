// What the three blend families (qx_blend, qx_lblend, qx_sblend) share: the five variants of each
// family differ only in how the foreground weight w of a pixel is formed,
//   w = fg.a * f / 256   (fraction dropped)
// from a per-pixel factor f in 0..256:
//   base:  f = 256 (w = fg.a)          _t:   f = T
//   _m:    f = m                        _mt:  f = m * T / 256
//   _mlt:  f = lut[m] * T / 256
// with m = mask[i] and T = min(opacity, 256) compared unsigned, once per call. Each family
// supplies only its arithmetic on (bg, fg, w); the line loop, with its tail pairing
// (TailPairing::kLastFg) and mask reading, is the shared frame of frame/line.h.
#pragma once

#include <cstdint>

#include "frame/isa.h"
#include "frame/line.h"
#include "frame/pixel.h"
#include "frame/unit.h"

namespace qx {
inline namespace QX_UNIT_NS {

enum class Weight : std::uint8_t { kAlpha, kOpacity, kMask, kMaskOpacity, kLutOpacity };

constexpr bool has_mask(Weight w) noexcept {
  return w == Weight::kMask || w == Weight::kMaskOpacity || w == Weight::kLutOpacity;
}

template <Weight kW>
using FamilyShape = Shape<2, has_mask(kW), TailPairing::kLastFg>;

// The per-pixel factor f of a variant (t already clamped).
template <Weight kW>
constexpr std::uint32_t weight_factor(std::uint8_t m, const std::uint8_t* lut,
                                      std::uint32_t t) noexcept {
  if constexpr (kW == Weight::kAlpha)
    return 256u;
  else if constexpr (kW == Weight::kOpacity)
    return t;
  else if constexpr (kW == Weight::kMask)
    return m;
  else if constexpr (kW == Weight::kMaskOpacity)
    return m * t >> 8;
  else
    return lut[m] * t >> 8;
}

// Scalar form of one family line: arith(bg, fg, w) -> output pixel.
template <Weight kW, class Arith>
inline void scalar_family_line(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                               std::int32_t count, const std::uint8_t* mask,
                               const std::uint8_t* lut, std::uint32_t opacity, Arith&& arith) {
  const std::uint32_t t = clamp256(opacity);
  scalar_line<FamilyShape<kW>>(
      Lines{dst, bg, fg, mask, count}, [&](std::uint32_t b, std::uint32_t f, auto... m) {
        std::uint8_t mv = 0;
        ((mv = m), ...);
        return arith(b, f, chan(f, 3) * weight_factor<kW>(mv, lut, t) >> 8);
      });
}

// The five functions of a family, all with the exported argument order.
using FamilyFn = void(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                      std::int32_t count);
using FamilyTFn = void(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                       std::int32_t count, std::uint32_t opacity);
using FamilyMFn = void(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                       std::int32_t count, const std::uint8_t* mask);
using FamilyMtFn = void(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                        std::int32_t count, const std::uint8_t* mask, std::uint32_t opacity);
using FamilyMltFn = void(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg,
                         std::int32_t count, const std::uint8_t* mask, const std::uint8_t* lut,
                         std::uint32_t opacity);

}  // namespace QX_UNIT_NS
}  // namespace qx

// Declares base, base_t, base_m, base_mt and base_mlt in the current namespace.
#define QX_DECLARE_FAMILY(base) \
  ::qx::FamilyFn base;          \
  ::qx::FamilyTFn base##_t;     \
  ::qx::FamilyMFn base##_m;     \
  ::qx::FamilyMtFn base##_mt;   \
  ::qx::FamilyMltFn base##_mlt;

// Defines the five functions of a family in the current namespace from
// LINE<Weight>(dst, bg, fg, count, mask, lut, opacity).
#define QX_DEFINE_FAMILY(base, LINE)                                                               \
  void base(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, std::int32_t n) {    \
    LINE<::qx::Weight::kAlpha>(d, b, f, n, nullptr, nullptr, 256u);                                \
  }                                                                                                \
  void base##_t(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, std::int32_t n,  \
                std::uint32_t o) {                                                                 \
    LINE<::qx::Weight::kOpacity>(d, b, f, n, nullptr, nullptr, o);                                 \
  }                                                                                                \
  void base##_m(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, std::int32_t n,  \
                const std::uint8_t* m) {                                                           \
    LINE<::qx::Weight::kMask>(d, b, f, n, m, nullptr, 256u);                                       \
  }                                                                                                \
  void base##_mt(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, std::int32_t n, \
                 const std::uint8_t* m, std::uint32_t o) {                                         \
    LINE<::qx::Weight::kMaskOpacity>(d, b, f, n, m, nullptr, o);                                   \
  }                                                                                                \
  void base##_mlt(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f,                \
                  std::int32_t n, const std::uint8_t* m, const std::uint8_t* l, std::uint32_t o) { \
    LINE<::qx::Weight::kLutOpacity>(d, b, f, n, m, l, o);                                          \
  }

// Inside namespace qx::scalar: defines the five functions of family `base` from its per-pixel
// arithmetic px(bg, fg, w) -> output pixel.
#define QX_DEFINE_SCALAR_FAMILY(base, px)                                            \
  namespace {                                                                        \
  template <::qx::Weight kW>                                                         \
  void base##_line(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, \
                   std::int32_t n, const std::uint8_t* m, const std::uint8_t* l,     \
                   std::uint32_t o) {                                                \
    ::qx::scalar_family_line<kW>(d, b, f, n, m, l, o, px);                           \
  }                                                                                  \
  }                                                                                  \
  QX_DEFINE_FAMILY(base, base##_line)

// Inside namespace qx: declares the five functions of a family in every form and lists them as
// base_forms, base_t_forms, base_m_forms, base_mt_forms and base_mlt_forms.
#define QX_FAMILY_FORMS(base)            \
  QX_KERNEL_FORMS(FamilyFn, base)        \
  QX_KERNEL_FORMS(FamilyTFn, base##_t)   \
  QX_KERNEL_FORMS(FamilyMFn, base##_m)   \
  QX_KERNEL_FORMS(FamilyMtFn, base##_mt) \
  QX_KERNEL_FORMS(FamilyMltFn, base##_mlt)

// Defines the five exports qx_base, qx_base_t, ... (inside extern "C").
#define QX_EXPORT_FAMILY(base)                                                                \
  QX_API void QX_CALL qx_##base(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,        \
                                int32_t count) {                                              \
    qx::chosen<qx::base##_forms>()(dst, bg, fg, count);                                       \
  }                                                                                           \
  QX_API void QX_CALL qx_##base##_t(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,    \
                                    int32_t count, uint32_t opacity) {                        \
    qx::chosen<qx::base##_t_forms>()(dst, bg, fg, count, opacity);                            \
  }                                                                                           \
  QX_API void QX_CALL qx_##base##_m(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,    \
                                    int32_t count, const uint8_t* mask) {                     \
    qx::chosen<qx::base##_m_forms>()(dst, bg, fg, count, mask);                               \
  }                                                                                           \
  QX_API void QX_CALL qx_##base##_mt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,   \
                                     int32_t count, const uint8_t* mask, uint32_t opacity) {  \
    qx::chosen<qx::base##_mt_forms>()(dst, bg, fg, count, mask, opacity);                     \
  }                                                                                           \
  QX_API void QX_CALL qx_##base##_mlt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,  \
                                      int32_t count, const uint8_t* mask, const uint8_t* lut, \
                                      uint32_t opacity) {                                     \
    qx::chosen<qx::base##_mlt_forms>()(dst, bg, fg, count, mask, lut, opacity);               \
  }
