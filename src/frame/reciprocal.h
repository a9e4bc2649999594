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

}  // namespace qx
