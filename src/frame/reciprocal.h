// ReciprocalTable: entry 0 = 0, entry i = 65535 / i truncated (entry 1 = 65535, 255 = 257).
// A compile-time constant, so it is complete before any export can run and is never written.
#pragma once

#include <array>
#include <cstdint>

namespace qx {

inline constexpr std::array<std::uint16_t, 256> ReciprocalTable = [] {
  std::array<std::uint16_t, 256> t{};
  for (unsigned i = 1; i < 256; ++i) t[i] = static_cast<std::uint16_t>(65535u / i);
  return t;
}();

// ReciprocalTable with each entry in both 16-bit halves of a 32-bit word, for vector code that
// fetches one word per pixel and needs the entry in every 16-bit lane of it.
inline constexpr std::array<std::uint32_t, 256> ReciprocalPairs = [] {
  std::array<std::uint32_t, 256> t{};
  for (unsigned i = 0; i < 256; ++i) t[i] = ReciprocalTable[i] * 0x00010001u;
  return t;
}();

}  // namespace qx
