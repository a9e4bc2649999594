#include "frame/line.h"
#include "scale/linzoom.h"
#include "scale/linzoom_vec.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {

void lin_pix(std::uint32_t* dst, const std::uint32_t* src1, const std::uint32_t* src2,
             std::uint32_t weight, std::int32_t count) {
  const std::uint32_t w = clamp256(weight);
  const V::Px wv = V::set16(w);  // both weights in every lane, once per call
  const V::Px iwv = V::subs_u16(V::set16(256), wv);
  vector_line<V, Shape<2, false>>(Lines{dst, src1, src2, nullptr, count}, [&](V::Px a, V::Px b) {
    return lin_pix_group<V>(a, b, wv, iwv);
  });
}

}  // namespace qx::QX_SIMD
