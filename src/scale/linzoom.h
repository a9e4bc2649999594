// qx_lin_pix: two lines mixed with one weight, every byte alike:
//   dst = src1 * w / 256 + src2 * (256 - w) / 256, each quotient truncated, w = min(weight, 256)
//   compared unsigned; walks the line through the shared frame (frame/line.h).
// qx_zoom_in2x1d / qx_zoom_in2x2d: doubling by the truncated average of neighbours, every byte
//   alike, in whole groups of four source pixels (see the frame below).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/isa.h"

namespace qx {

using LinPixFn = void(std::uint32_t* dst, const std::uint32_t* src1, const std::uint32_t* src2,
                      std::uint32_t weight, std::int32_t count);
using ZoomIn1dFn = void(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count);
using ZoomIn2dFn = void(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                        std::int32_t height, std::int32_t src_stride);

QX_KERNEL_FORMS(LinPixFn, lin_pix)

QX_KERNEL_FORMS(ZoomIn1dFn, zoom_in2x1d)
QX_KERNEL_FORMS(ZoomIn2dFn, zoom_in2x2d)

// The picture doubling shared by every form of qx_zoom_in2x2d. With W = 2 * width output pixels
// per row and R(k) output row k (rows packed, W pixels apart):
//   - R(2y) = source row y doubled as by qx_zoom_in2x1d (so only 8 * (width / 4) of its pixels are
//     written), for y < height;
//   - R(2y + 1) = the truncated average of R(2y) and R(2y + 2) over the first 4 * (W / 4) pixels,
//     for y < height - 1;
//   - the last row R(2 * height - 1) is a copy of R(2 * height - 2), made also when height <= 0:
//     then R(1) receives a copy of R(0).
// Each odd row is formed as soon as the even row below it exists, while both are still in cache;
// the result equals doing every even row first, as the rows are disjoint and never read src.
// A negative width writes nothing.
// Ops supplies a form's line operations:
//   double_line(dst, src, count)  as qx_zoom_in2x1d;
//   average_rows(dst, a, b, n)    dst[i] = average(a[i], b[i]) for i < n, n a multiple of 4.
template <class Ops>
inline void zoom_in2x2d_frame(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                              std::int32_t height, std::int32_t src_stride) {
  if (width < 0) return;
  const std::ptrdiff_t w = 2 * static_cast<std::ptrdiff_t>(width);
  const std::ptrdiff_t averaged = w / 4 * 4;
  for (std::int32_t y = 0; y < height; ++y) {
    std::uint32_t* row = dst + 2 * w * y;
    Ops::double_line(row, src + static_cast<std::ptrdiff_t>(src_stride) * y, width);
    if (y > 0) Ops::average_rows(row - w, row - 2 * w, row, averaged);
  }
  const std::ptrdiff_t last = height > 0 ? 2 * static_cast<std::ptrdiff_t>(height) - 2 : 0;
  if (w > 0) std::memcpy(dst + (last + 1) * w, dst + last * w, sizeof(std::uint32_t) * w);
}

}  // namespace qx
