#include "scale/resample.h"
#include "scale/resample_vec.h"

namespace qx::sse2 {

namespace {
struct Weights {
  static void spread(__m128i pos, __m128i& lo, __m128i& hi) {
    const __m128i f = _mm_and_si128(pos, _mm_set1_epi32(0xFF));
    const __m128i f2 = _mm_or_si128(f, _mm_slli_epi32(f, 16));  // f in both halves of its lane
    lo = _mm_shuffle_epi32(f2, _MM_SHUFFLE(1, 1, 0, 0));
    hi = _mm_shuffle_epi32(f2, _MM_SHUFFLE(3, 3, 2, 2));
  }
};
}  // namespace

void scale_line_interp(std::uint32_t* dst, const std::uint32_t* src, std::int32_t dst_count,
                       const std::int32_t* table) {
  interp_groups<Weights>(dst, src, dst_count, table);
}

}  // namespace qx::sse2
