#include "convert/color_vec.h"
#include "convert/convert.h"
#include "frame/line.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {

void argb2ayuv(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  vector_line<V, Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count},
                                  [](V::Px px) { return color_vec::argb2ayuv<V>(px); });
}

void ayuv2argb(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  vector_line<V, Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count},
                                  [](V::Px px) { return color_vec::ayuv2argb<V>(px); });
}

}  // namespace qx::QX_SIMD
