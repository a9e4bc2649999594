// Line resampling by two-tap linear interpolation (qx_scale_1d, qx_scale_horz) and picture
// shrinking by whole factors (qx_zoom_outNx).
//
// Output j of a resampled line of n pixels reads the source at a fixed-point position with 8
// fraction bits (index i = position >> 8, fraction f = position & 255): j * step for j < n - 1,
// and the last output pinned to end - 1, where end = (src_count - 1) * 256 is the position of the
// last source pixel and step = (end - 1) / (n - 1). No position needs a pixel past src_count - 1.
// Every form computes positions as it goes: nothing is allocated, so the scalers cannot fail for
// lack of memory, and the rows of qx_scale_horz share nothing but these few numbers.
//
// 4 * (n / 4) outputs are written; the last n % 4 are left alone. Per group of four outputs
// j = 4k .. 4k+3 the left and right taps are paired as
//   out 4k   = mix(P[i_4k],       P[i_4k + 1],     f_4k)
//   out 4k+1 = mix(P[i_4k + 1],   P[i_4k+1 + 1],   f_4k+1)
//   out 4k+2 = mix(P[i_4k+2],     P[i_4k+2 + 1],   f_4k+2)
//   out 4k+3 = mix(P[i_4k+2 + 1], P[i_4k+3 + 1],   f_4k+3)
// (the odd outputs take as left tap the right neighbour of the preceding output's left tap, which
// is what pairing adjacent-pixel loads gives), and mix(l, r, f) is, for each of the four bytes,
// l * (256 - f) / 256 + r * f / 256 with each product truncated on its own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace qx {

// The largest source length: its last position, (2^23 - 1) * 256, still fits a signed 32-bit int.
inline constexpr std::int32_t kMaxScaleSrc = 1 << 23;

// The positions of one resampled line.
struct ScaleSteps {
  std::int32_t count;  // output pixels, at least 2
  std::uint32_t step;
  std::uint32_t last;  // the position of output count - 1
  // The position of output j, 0 <= j < count; below 2^31 - 256.
  constexpr std::uint32_t at(std::int32_t j) const {
    return j == count - 1 ? last : static_cast<std::uint32_t>(j) * step;
  }
};

// The positions for src_count source pixels resampled to dst_count, or false when the arguments
// write nothing: dst_count < 2 (no step), src_count < 2 or src_count > kMaxScaleSrc. Exact in
// 32 bits: end <= 2^31 - 256, and j * step <= (end - 1) * j / (dst_count - 1) < end for
// j < dst_count - 1.
constexpr bool scale_steps(std::int32_t src_count, std::int32_t dst_count, ScaleSteps& s) {
  if (dst_count < 2 || src_count < 2 || src_count > kMaxScaleSrc) return false;
  const std::uint32_t end = static_cast<std::uint32_t>(src_count - 1) * 256;
  s = {dst_count, (end - 1) / static_cast<std::uint32_t>(dst_count - 1), end - 1};
  return true;
}

// qx_scale_1d and qx_scale_horz, with the exports' arguments. Rows lie dst_stride / src_stride
// pixels apart (either sign); height <= 0 writes nothing.
using Scale1dFn = void(std::uint32_t* dst, std::int32_t dst_count, const std::uint32_t* src,
                       std::int32_t src_count);
using ScaleHorzFn = void(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_stride,
                         const std::uint32_t* src, std::int32_t src_width, std::int32_t height,
                         std::int32_t src_stride);

QX_KERNEL_FORMS(Scale1dFn, scale_1d)
QX_KERNEL_FORMS(ScaleHorzFn, scale_horz)

// The frame of every form of qx_scale_horz: the positions once per call, row_for(steps) once to
// make the form's row function, then row(dst_row, src_row) for each row.
template <class RowFor>
inline void scale_frame(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_stride,
                        const std::uint32_t* src, std::int32_t src_width, std::int32_t height,
                        std::int32_t src_stride, RowFor&& row_for) {
  ScaleSteps s{};
  if (!scale_steps(src_width, dst_width, s)) return;
  const auto row = row_for(s);
  for (std::int32_t y = 0; y < height; ++y)
    row(dst + std::ptrdiff_t{y} * dst_stride, src + std::ptrdiff_t{y} * src_stride);
}

// dst (packed, dst_width x dst_height) takes the top-left pixel of each fx x fy block of src
// (packed, row pitch src_width), fx and fy the ratios rounded up. Samples are not clamped: they may
// come from the next source row or from rows past src_height, which the caller sizes src for.
// Any width or height <= 0 writes nothing. dst may be src itself when dst_width <= src_width:
// every source pixel is then read before that memory is written.
using ZoomOutFn = void(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_height,
                       const std::uint32_t* src, std::int32_t src_width, std::int32_t src_height);

QX_KERNEL_FORMS(ZoomOutFn, zoom_out)

// The frame of every form of qx_zoom_outNx: the factors once per call, row_for(fx) once to make
// the form's row function, then row(dst_row, src_row, next_src_row) for each row, where a row
// takes dst_row[c] = src_row[c * fx] for c < dst_width (next_src_row is where the next row will
// read, null for the last row: a hint for prefetching).
template <class RowFor>
inline void zoom_out_frame(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_height,
                           const std::uint32_t* src, std::int32_t src_width,
                           std::int32_t src_height, RowFor&& row_for) {
  if (dst_width <= 0 || dst_height <= 0 || src_width <= 0 || src_height <= 0) return;
  const std::ptrdiff_t fx = src_width / dst_width + (src_width % dst_width != 0);
  const std::ptrdiff_t fy = src_height / dst_height + (src_height % dst_height != 0);
  const auto row = row_for(fx);
  for (std::int32_t r = 0; r < dst_height; ++r) {
    const std::uint32_t* s = src + r * fy * src_width;
    row(dst + std::ptrdiff_t{r} * dst_width, s, r + 1 < dst_height ? s + fy * src_width : nullptr);
  }
}

}  // namespace qx
