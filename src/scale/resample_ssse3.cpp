#include <tmmintrin.h>

#include "scale/resample.h"
#include "scale/resample_vec.h"

namespace qx::ssse3 {

namespace {
// One byte shuffle per half: each position's low byte into the low byte of its pixel's four
// 16-bit lanes, zero (index -128) into the high bytes.
struct Weights {
  static void spread(__m128i pos, __m128i& lo, __m128i& hi) {
    constexpr char z = -128;
    lo = _mm_shuffle_epi8(pos, _mm_setr_epi8(0, z, 0, z, 0, z, 0, z, 4, z, 4, z, 4, z, 4, z));
    hi = _mm_shuffle_epi8(pos, _mm_setr_epi8(8, z, 8, z, 8, z, 8, z, 12, z, 12, z, 12, z, 12, z));
  }
};
}  // namespace

void scale_line_interp(std::uint32_t* dst, const std::uint32_t* src, std::int32_t dst_count,
                       const std::int32_t* table) {
  interp_groups<Weights>(dst, src, dst_count, table);
}

}  // namespace qx::ssse3
