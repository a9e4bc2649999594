#include "alpha/alpha.h"
#include "alpha/alpha_vec.h"
#include "frame/line.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {

void alpha(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  vector_line<V, Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count},
                                  [](V::Px x) { return alpha_group<V>(x); });
}

void mask(std::uint32_t* dst, const std::uint32_t* src, const std::uint8_t* mask,
          std::int32_t count) {
  vector_line<V, Shape<1, true>>(Lines{dst, src, nullptr, mask, count},
                                 [](V::Px x, V::Bytes m) { return mask_group<V>(x, m); });
}

}  // namespace qx::QX_SIMD
