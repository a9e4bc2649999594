#include <algorithm>

#include "lblend/lblend.h"

namespace qx::scalar {
namespace {

// One output pixel from its background, foreground and foreground weight w (0..255).
std::uint32_t lblend_px(std::uint32_t bg, std::uint32_t fg, std::uint32_t w) {
  std::uint32_t c[3];
  for (int k = 0; k < 3; ++k) c[k] = (chan(bg, k) * (256u - w) >> 8) + (chan(fg, k) * w >> 8);
  const std::uint32_t a = std::min(255u, chan(bg, 3) + (chan(fg, 3) * w >> 8));
  return make_px(c[0], c[1], c[2], a);
}

}  // namespace

QX_DEFINE_SCALAR_FAMILY(lblend, lblend_px)

}  // namespace qx::scalar
