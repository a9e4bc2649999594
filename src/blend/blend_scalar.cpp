#include "blend/blend.h"

namespace qx::scalar {
namespace {

std::uint32_t blend_px(std::uint32_t bg, std::uint32_t fg, std::uint32_t w) {
  const std::uint32_t v = 256 - w;
  const std::uint32_t ba = chan(bg, 3);
  std::uint32_t out = 0;
  for (int k = 0; k < 3; ++k)
    out |= (chan(fg, k) * w / 256 + chan(bg, k) * ba * v / 65536) << (8 * k);
  return out | (255 * w / 256 + 255 * ba * v / 65536) << 24;
}

}  // namespace

QX_DEFINE_SCALAR_FAMILY(blend, blend_px)

}  // namespace qx::scalar
