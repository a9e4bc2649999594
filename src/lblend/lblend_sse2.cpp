#include "frame/family_vec.h"
#include "lblend/lblend.h"
#include "lblend/lblend_vec.h"
#include "simd/sse2.h"

namespace qx::sse2 {
namespace {

template <Weight kW>
void line(std::uint32_t* d, const std::uint32_t* b, const std::uint32_t* f, std::int32_t n,
          const std::uint8_t* m, const std::uint8_t* l, std::uint32_t o) {
  vector_family_line<V, kW, LblendArith>(d, b, f, n, m, l, o);
}

}  // namespace

QX_DEFINE_FAMILY(lblend, line)

}  // namespace qx::sse2
