#include "frame/line.h"
#include "frame/pixel.h"
#include "scale/linzoom.h"

namespace qx::scalar {
namespace {

// Per byte floor((x + y) / 2).
std::uint32_t average(std::uint32_t x, std::uint32_t y) {
  return make_px((chan(x, 0) + chan(y, 0)) >> 1, (chan(x, 1) + chan(y, 1)) >> 1,
                 (chan(x, 2) + chan(y, 2)) >> 1, (chan(x, 3) + chan(y, 3)) >> 1);
}

struct ZoomOps {
  static void double_line(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
    zoom_in2x1d(dst, src, count);
  }
  static void average_rows(std::uint32_t* dst, const std::uint32_t* a, const std::uint32_t* b,
                           std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) dst[i] = average(a[i], b[i]);
  }
};

}  // namespace

void lin_pix(std::uint32_t* dst, const std::uint32_t* src1, const std::uint32_t* src2,
             std::uint32_t weight, std::int32_t count) {
  const std::uint32_t w = clamp256(weight);
  const std::uint32_t iw = 256 - w;
  scalar_line<Shape<2, false>>(
      Lines{dst, src1, src2, nullptr, count}, [&](std::uint32_t a, std::uint32_t b) {
        std::uint32_t out = 0;
        for (int k = 0; k < 4; ++k)
          out |= ((chan(a, k) * w >> 8) + (chan(b, k) * iw >> 8)) << (8 * k);
        return out;
      });
}

void zoom_in2x1d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  const std::int32_t n = count / kGroup * kGroup;  // the last count % 4 pixels are not used
  if (n <= 0) return;
  std::uint32_t prev = src[0];  // the first pixel is its own predecessor
  for (std::int32_t i = 0; i < n; ++i) {
    const std::uint32_t p = src[i];
    dst[2 * i] = average(prev, p);
    dst[2 * i + 1] = p;
    prev = p;
  }
}

void zoom_in2x2d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                 std::int32_t height, std::int32_t src_stride) {
  zoom_in2x2d_frame<ZoomOps>(dst, src, width, height, src_stride);
}

}  // namespace qx::scalar
