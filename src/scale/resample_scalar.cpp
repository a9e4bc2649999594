#include <cstddef>
#include <cstdint>

#include "frame/pixel.h"
#include "scale/resample.h"

namespace qx::scalar {
namespace {

std::uint32_t mix(std::uint32_t left, std::uint32_t right, std::uint32_t f) {
  std::uint32_t out = 0;
  for (int k = 0; k < 4; ++k)
    out |= ((chan(left, k) * (256 - f) >> 8) + (chan(right, k) * f >> 8)) << (8 * k);
  return out;
}

void scale_row(std::uint32_t* dst, const std::uint32_t* src, const ScaleSteps& s) {
  const auto px = [src](std::uint32_t i) { return load_px(src + i); };
  const std::int32_t groups = s.count / 4;
  for (std::int32_t g = 0; g < groups; ++g) {
    const std::int32_t j = 4 * g;
    std::uint32_t i[4], f[4];
    for (int n = 0; n < 4; ++n) {
      i[n] = s.at(j + n) >> 8;
      f[n] = s.at(j + n) & 255u;
    }
    store_px(dst + j + 0, mix(px(i[0]), px(i[0] + 1), f[0]));
    store_px(dst + j + 1, mix(px(i[0] + 1), px(i[1] + 1), f[1]));
    store_px(dst + j + 2, mix(px(i[2]), px(i[2] + 1), f[2]));
    store_px(dst + j + 3, mix(px(i[2] + 1), px(i[3] + 1), f[3]));
  }
}

}  // namespace

void scale_horz(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_stride,
                const std::uint32_t* src, std::int32_t src_width, std::int32_t height,
                std::int32_t src_stride) {
  scale_frame(dst, dst_width, dst_stride, src, src_width, height, src_stride,
              [](const ScaleSteps& s) {
                return [s](std::uint32_t* d, const std::uint32_t* sr) { scale_row(d, sr, s); };
              });
}

void scale_1d(std::uint32_t* dst, std::int32_t dst_count, const std::uint32_t* src,
              std::int32_t src_count) {
  scale_horz(dst, dst_count, 0, src, src_count, 1, 0);
}

void zoom_out(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_height,
              const std::uint32_t* src, std::int32_t src_width, std::int32_t src_height) {
  zoom_out_frame(dst, dst_width, dst_height, src, src_width, src_height, [=](std::ptrdiff_t fx) {
    return [=](std::uint32_t* d, const std::uint32_t* s, const std::uint32_t*) {
      for (std::int32_t c = 0; c < dst_width; ++c) d[c] = s[c * fx];
    };
  });
}

}  // namespace qx::scalar
