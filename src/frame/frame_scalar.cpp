#include "frame/fill.h"
#include "frame/line.h"

namespace qx::scalar {

void fill(std::uint32_t* dst, std::uint32_t value, std::int32_t count) {
  scalar_line<Shape<0, false>>(Lines{dst, nullptr, nullptr, nullptr, count}, [&] { return value; });
}

}  // namespace qx::scalar
