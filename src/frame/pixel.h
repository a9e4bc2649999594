// The 32-bit pixel as scalar code sees it, and the helpers every scalar form shares.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/unit.h"

namespace qx {
inline namespace QX_UNIT_NS {

// Pixels per group: the vector body works on whole groups, the tail on the count % kGroup rest.
inline constexpr std::int32_t kGroup = 4;

// Loads and stores of one pixel at any byte alignment (callers' lines need not be 4-aligned for
// the scalar forms to be well defined).
inline std::uint32_t load_px(const void* p) noexcept {
  std::uint32_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
inline void store_px(void* p, std::uint32_t v) noexcept { std::memcpy(p, &v, sizeof v); }

// Byte k of a pixel word (k = 0..3 in memory order; 3 is alpha).
constexpr std::uint32_t chan(std::uint32_t px, int k) noexcept { return (px >> (8 * k)) & 0xFFu; }

// Assembles a pixel from its four bytes in memory order.
constexpr std::uint32_t make_px(std::uint32_t b0, std::uint32_t b1, std::uint32_t b2,
                                std::uint32_t b3) noexcept {
  return b0 | (b1 << 8) | (b2 << 16) | (b3 << 24);
}

// Opacity and weight arguments: compared unsigned, so every value above 256 (and every negative
// value a caller passes as a signed integer) acts as 256.
constexpr std::uint32_t clamp256(std::uint32_t v) noexcept { return v > 256u ? 256u : v; }

}  // namespace QX_UNIT_NS
}  // namespace qx
