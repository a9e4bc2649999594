#include "frame/fill.h"
#include "frame/line.h"
#include "simd/sse2.h"

namespace qx::sse2 {

void fill(std::uint32_t* dst, std::uint32_t value, std::int32_t count) {
  const V::Px v = V::set_px(value);
  vector_line<V, Shape<0, false>>(Lines{dst, nullptr, nullptr, nullptr, count}, [&] { return v; });
}

}  // namespace qx::sse2
