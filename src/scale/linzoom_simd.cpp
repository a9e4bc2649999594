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

// Whole vectors of source pixels, the predecessors of each taken from it and the vector before
// (the first vector's from its own pixels, the first its own predecessor). After the first vector
// the vectors start where their stores fall on vector boundaries, and the last one ends at the
// line's end (its predecessors one unaligned load back); both may overlap pixels already done,
// rewriting them with the same values. A line shorter than a vector goes through scratch. Nothing
// outside the line's first 4 * (count / 4) pixels is read or written.
void zoom_in2x1d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  const std::int32_t n = count / kGroup * kGroup;  // the last count % 4 pixels are not used
  if (n <= 0) return;
  const auto at = [dst, src](std::int32_t i) {
    double_vector(dst + 2 * std::ptrdiff_t{i}, V::load(src + i - 1), V::load(src + i));
  };
  if (n >= P) {
    V::Px prev = V::load(src);
    double_vector(dst, V::repeat_first_px(prev), prev);
    // Output pixel 2i lies 8i bytes into dst: start at the first i in [1, P] that puts the stores
    // on vector boundaries, if one does. Each source pixel is loaded once: a reload one pixel
    // back would split a cache line on most vectors of the wider sets.
    constexpr std::uintptr_t kBytes = 4 * P;
    const std::uintptr_t past = reinterpret_cast<std::uintptr_t>(dst) % kBytes;
    std::int32_t i = P;
    if (past != 0 && past % 8 == 0) {
      i = static_cast<std::int32_t>((kBytes - past) / 8);
      prev = V::set_px(load_px(src + i - 1));  // (only its last pixel counts)
    }
    for (const std::int32_t last = n - P; i <= last; i += P) {
      const V::Px cur = V::load(src + i);
      double_vector(dst + 2 * std::ptrdiff_t{i}, V::shift_in_px(cur, prev), cur);
      prev = cur;
    }
    if (i < n && n > P) at(n - P);
    return;
  }
  alignas(64) std::uint32_t before[P] = {}, cur[P] = {}, out[2 * P];
  before[0] = load_px(src);
  std::memcpy(before + 1, src, sizeof(std::uint32_t) * static_cast<std::size_t>(n - 1));
  std::memcpy(cur, src, sizeof(std::uint32_t) * static_cast<std::size_t>(n));
  double_vector(out, V::load(before), V::load(cur));
  std::memcpy(dst, out, 2 * sizeof(std::uint32_t) * static_cast<std::size_t>(n));
}

void zoom_in2x2d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                 std::int32_t height, std::int32_t src_stride) {
  zoom_in2x2d_frame<ZoomOps>(dst, src, width, height, src_stride);
}

}  // namespace qx::QX_SIMD
