#include <tmmintrin.h>

#include "alpha/alpha.h"
#include "frame/line.h"

namespace qx::ssse3 {
namespace {

// The frame's memory operations for this unit. It does not share simd/sse2.h: that policy's inline
// functions must never be compiled with SSSE3 enabled, since the linker keeps one copy of each.
struct V {
  using Px = __m128i;
  static constexpr std::int32_t kPixels = 4;
  static Px load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
  static void store(void* p, Px v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
  static Px zero() { return _mm_setzero_si128(); }
};

}  // namespace

void alpha(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  // Byte i of a result takes source byte pattern[i]: byte 3 of each pixel into all four of its.
  const __m128i pattern = _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
  vector_line<V, Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count},
                                  [&](__m128i x) { return _mm_shuffle_epi8(x, pattern); });
}

}  // namespace qx::ssse3
