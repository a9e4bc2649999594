#include "frame/line.h"
#include "scale/linzoom.h"
#include "scale/linzoom_vec.h"
#include "simd/sse2.h"

namespace qx::sse2 {
namespace {

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

// Four source pixels per step. The predecessors of a group are one unaligned load one pixel back
// (the pixel before the group is inside the line for every group but the first), which costs a
// load instead of two byte shifts and an OR on the shuffle unit. Unaligned accesses cost nothing on
// aligned lines and do not fault on misaligned ones.
void zoom_in2x1d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  const std::int32_t groups = count / kGroup;
  if (groups <= 0) return;
  V::Px cur = V::load(src);
  V::Px before = _mm_shuffle_epi32(cur, 0x90);  // p[0] p[0] p[1] p[2]: p[0] is its own predecessor
  for (std::int32_t g = 0;;) {
    const V::Px mid = floor_avg<V>(before, cur);
    V::store(dst + 8 * g, _mm_unpacklo_epi32(mid, cur));
    V::store(dst + 8 * g + 4, _mm_unpackhi_epi32(mid, cur));
    if (++g == groups) break;
    cur = V::load(src + 4 * g);
    before = V::load(src + 4 * g - 1);
  }
}

void zoom_in2x2d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                 std::int32_t height, std::int32_t src_stride) {
  zoom_in2x2d_frame<ZoomOps>(dst, src, width, height, src_stride);
}

}  // namespace qx::sse2
