#include "blend/blend.h"
#include "blend/blend_vec.h"
#include "frame/family_vec.h"
#include "simd/sse2.h"

namespace qx::sse2 {
namespace {

template <Weight kW>
void line(std::uint32_t* dst, const std::uint32_t* bg, const std::uint32_t* fg, std::int32_t count,
          const std::uint8_t* mask, const std::uint8_t* lut, std::uint32_t opacity) {
  vector_family_line<V, kW, BlendArith>(dst, bg, fg, count, mask, lut, opacity);
}

}  // namespace

QX_DEFINE_FAMILY(blend, line)

}  // namespace qx::sse2
