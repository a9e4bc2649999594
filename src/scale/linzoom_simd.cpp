#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/line.h"
#include "scale/linzoom.h"
#include "scale/linzoom_vec.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {
namespace {

constexpr std::int32_t P = V::kPixels;

// Source pixels cur (the vector before is the same pixels one back) to 2 * P output pixels:
// out[2k] = floor_avg(before[k], cur[k]), out[2k + 1] = cur[k].
void double_vector(std::uint32_t* out, V::Px before, V::Px cur) {
  const V::Px mid = floor_avg<V>(before, cur);
  V::store(out, V::zip_lo_px(mid, cur));
  V::store(out + P, V::zip_hi_px(mid, cur));
}

struct ZoomOps {
  static void double_line(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
    zoom_in2x1d(dst, src, count);
  }
  static void average_rows(std::uint32_t* dst, const std::uint32_t* a, const std::uint32_t* b,
                           std::ptrdiff_t n) {
    qx::average_rows<V>(dst, a, b, n);
  }
};

}  // namespace

void lin_pix(std::uint32_t* dst, const std::uint32_t* src1, const std::uint32_t* src2,
             std::uint32_t weight, std::int32_t count) {
  const std::uint32_t w = clamp256(weight);
  const V::Px wv = V::set16(w);  // both weights in every lane, once per call
  const V::Px iwv = V::subs_u16(V::set16(256), wv);
  vector_line<V, Shape<2, false>>(Lines{dst, src1, src2, nullptr, count}, [&](V::Px a, V::Px b) {
    return lin_pix_group<V>(a, b, wv, iwv);
  });
}

// Whole vectors of source pixels; the predecessors of a vector are one unaligned load one pixel
// back, except for the first vector (whose first pixel is its own predecessor) and the rest of
// fewer than P pixels, which go through scratch so that nothing outside the line's first
// 4 * (count / 4) pixels is read or written.
void zoom_in2x1d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  const std::int32_t n = count / kGroup * kGroup;  // the last count % 4 pixels are not used
  if (n <= 0) return;
  alignas(64) std::uint32_t before[P] = {}, cur[P] = {}, out[2 * P];
  std::int32_t i = 0;
  if (n >= P) {
    before[0] = load_px(src);
    std::memcpy(before + 1, src, sizeof(std::uint32_t) * (P - 1));
    double_vector(dst, V::load(before), V::load(src));
    for (i = P; n - i >= P; i += P)
      double_vector(dst + 2 * std::ptrdiff_t{i}, V::load(src + i - 1), V::load(src + i));
  }
  if (i < n) {
    const std::size_t rest = static_cast<std::size_t>(n - i);
    before[0] = load_px(src + (i > 0 ? i - 1 : 0));
    std::memcpy(before + 1, src + i, sizeof(std::uint32_t) * (rest - 1));
    std::memcpy(cur, src + i, sizeof(std::uint32_t) * rest);
    double_vector(out, V::load(before), V::load(cur));
    std::memcpy(dst + 2 * std::ptrdiff_t{i}, out, 2 * sizeof(std::uint32_t) * rest);
  }
}

void zoom_in2x2d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                 std::int32_t height, std::int32_t src_stride) {
  zoom_in2x2d_frame<ZoomOps>(dst, src, width, height, src_stride);
}

}  // namespace qx::QX_SIMD
