#include <cstdint>

#include "frame/reciprocal.h"
#include "sblend/sblend.h"

namespace qx::scalar {
namespace {

// One pixel composited with foreground weight f (0..255).
std::uint32_t step(std::uint32_t bg, std::uint32_t fg, std::uint32_t f) {
  const std::uint32_t aout = f + chan(bg, 3) * (255u - f) / 256u;  // 0..255, 255 only if f = 255
  const std::uint32_t k = ReciprocalTable[aout] * f / 256u;  // f <= aout: the product fits 16 bits
  std::uint32_t out[3];
  for (int c = 0; c < 3; ++c) {
    const std::int32_t b = static_cast<std::int32_t>(chan(bg, c));
    const std::int32_t diff = static_cast<std::int32_t>(chan(fg, c)) - b;
    // floor(k * diff / 256): >> on a negative value rounds toward minus infinity.
    out[c] = static_cast<std::uint32_t>(b + ((static_cast<std::int32_t>(k) * diff) >> 8));
  }
  return make_px(out[0], out[1], out[2], aout);
}

}  // namespace

QX_DEFINE_SCALAR_FAMILY(sblend, step)

}  // namespace qx::scalar
