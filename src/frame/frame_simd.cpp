#include "frame/fill.h"
#include "frame/line.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {

void fill(std::uint32_t* dst, std::uint32_t value, std::int32_t count) {
  const V::Px v = V::set_px(value);
  vector_line<V, Shape<0, false>>(Lines{dst, nullptr, nullptr, nullptr, count}, [&] { return v; });
}

}  // namespace qx::QX_SIMD
