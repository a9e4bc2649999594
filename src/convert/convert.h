// Colour-format conversion: ARGB <-> AYUV (BT.601 studio range, 13-bit fixed point, truncating)
// and v210 unpacking into three 16-bit planes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"
#include "frame/pixel.h"
#include "frame/unit.h"

namespace qx {

// dst, src, count: one line of 32-bit pixels to another, alpha copied.
using ConvertFn = void(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count);
// dst (Y plane, then Cb, then Cr), src (v210 words), count (pixels).
using V210Fn = void(std::uint16_t* dst, const std::uint32_t* src, std::int32_t count);

QX_KERNEL_FORMS(ConvertFn, argb2ayuv)
QX_KERNEL_FORMS(ConvertFn, ayuv2argb)

// v210: the SSE2 form is an algorithm of its own (SSE2 has no byte shuffle); the wider forms are
// written over V and its byte permute.
namespace scalar {
V210Fn v210yuv422p10;
}
#if QX_X86
namespace sse2 {
V210Fn v210yuv422p10;
}
#endif
QX_FOR_EACH_PERMUTE_ISA(QX_DECLARE_FORM_, V210Fn, v210yuv422p10)
inline constexpr Form<V210Fn> v210yuv422p10_forms[] = {
    {Isa::kScalar, scalar::v210yuv422p10},
#if QX_X86
    {Isa::kSse2, sse2::v210yuv422p10},
#endif
    QX_FOR_EACH_PERMUTE_ISA(QX_LIST_FORM_, V210Fn, v210yuv422p10)};

inline namespace QX_UNIT_NS {
// Pixel pairs q0 <= q < q1 of a v210 line into the three planes, one field at a time. v210 holds
// its samples as one stream of 10-bit fields, three per little-endian word (bits 0-9, 10-19,
// 20-29; bits 30-31 unused), in the order Cb, Y, Cr, Y for each pair of pixels.
inline void v210_pairs(std::uint16_t* y, std::uint16_t* cb, std::uint16_t* cr,
                       const std::uint32_t* src, std::size_t q0, std::size_t q1) {
  const auto field = [src](std::size_t j) {
    return static_cast<std::uint16_t>((load_px(src + j / 3) >> (10 * (j % 3))) & 0x3FFu);
  };
  for (std::size_t q = q0; q < q1; ++q) {
    cb[q] = field(4 * q);
    y[2 * q] = field(4 * q + 1);
    cr[q] = field(4 * q + 2);
    y[2 * q + 1] = field(4 * q + 3);
  }
}
}  // namespace QX_UNIT_NS

// The conversion constants, shared by every form.
namespace yuv {
// ARGB -> AYUV: coefficient of each input channel for the U, Y and V outputs, in 1/8192.
inline constexpr std::int16_t kUFromR = -1212, kUFromG = -2383, kUFromB = 3596;
inline constexpr std::int16_t kYFromR = 2105, kYFromG = 4128, kYFromB = 803;
inline constexpr std::int16_t kVFromR = 3596, kVFromG = -3014, kVFromB = -581;
inline constexpr std::int16_t kUOffset = 128, kYOffset = 16, kVOffset = 128;
// AYUV -> ARGB, in 1/8192.
inline constexpr std::int16_t kBFromU = 16531, kRFromV = 13074, kFromY = 9535;
inline constexpr std::int16_t kGFromU = -3203, kGFromV = -6660;
}  // namespace yuv

}  // namespace qx
