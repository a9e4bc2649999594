#include "alpha/alpha.h"
#include "frame/line.h"
#include "frame/pixel.h"

namespace qx::scalar {

void alpha(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  scalar_line<Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count}, [](std::uint32_t p) {
    const std::uint32_t a = chan(p, 3);
    return make_px(a, a, a, a);
  });
}

void mask(std::uint32_t* dst, const std::uint32_t* src, const std::uint8_t* mask,
          std::int32_t count) {
  scalar_line<Shape<1, true>>(
      Lines{dst, src, nullptr, mask, count}, [](std::uint32_t p, std::uint8_t m) {
        return make_px(chan(p, 0), chan(p, 1), chan(p, 2), chan(p, 3) * m >> 8);
      });
}

}  // namespace qx::scalar
