#include <tmmintrin.h>

#include "alpha/alpha.h"
#include "alpha/alpha_vec.h"
#include "frame/line.h"
#include "simd/sse2.h"

namespace qx::ssse3 {
namespace {

// The SSE2 policy (its inline code is this unit's own copy, see frame/unit.h) with the alpha
// spread as one byte shuffle per four pixels.
struct V : sse2::V {
  static Px alpha_bytes(Px x) {
    // Byte i of a result takes source byte pattern[i]: byte 3 of each pixel into all four of its.
    return _mm_shuffle_epi8(x,
                            _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15));
  }
};

}  // namespace

void alpha(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  vector_line<V, Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count},
                                  [](V::Px x) { return alpha_group<V>(x); });
}

}  // namespace qx::ssse3
