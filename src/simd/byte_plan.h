// A byte permutation fixed at compile time, planned for instruction sets whose only byte shuffle
// works within 128-bit lanes (AVX2, AVX-512BW): first 32-bit lanes are moved across the vector,
// then bytes are picked within each 128-bit lane. No intrinsics here; the policies run the plan.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qx::byte_plan {

// idx[k] < 2 * B: byte k of the result is byte idx[k] of the concatenation of two B-byte vectors
// (a, then b); kZero: byte k is zero.
inline constexpr std::uint8_t kZero = 0xFF;

// Output 32-bit lane d is assembled in up to kMaxPasses passes. Pass p moves source lane
// lane[p][d] (0 .. 2 * B / 4 - 1, counting a's lanes first) to lane d, then shuffles bytes within
// each 128-bit lane by shuffle[p] (0x80: zero), and the passes are ORed together. A pass is needed
// for every distinct source lane one output lane draws its bytes from.
template <std::size_t B>
struct Plan {
  static constexpr std::size_t kLanes = B / 4;
  static constexpr int kMaxPasses = 4;
  int passes = 0;
  // (Aligned, so that no load of a table splits a cache line.)
  alignas(64) std::array<std::array<std::uint32_t, kLanes>, kMaxPasses> lane{};
  alignas(64) std::array<std::array<std::uint8_t, B>, kMaxPasses> shuffle{};
  // Per pass: whether any lane comes from a / from b (a pass may then move lanes of one vector).
  std::array<bool, kMaxPasses> uses_a{}, uses_b{};
};

template <std::size_t B>
constexpr Plan<B> plan(const std::array<std::uint8_t, B>& idx) {
  static_assert(B % 16 == 0, "whole 128-bit lanes");
  Plan<B> p;
  for (auto& s : p.shuffle) s.fill(0x80);
  for (std::size_t d = 0; d < B / 4; ++d) {
    int used = 0;
    for (std::size_t j = 0; j < 4; ++j) {
      const std::uint8_t i = idx[4 * d + j];
      if (i == kZero) continue;
      if (i >= 2 * B) throw "byte index outside the two vectors";  // stops constant evaluation
      const std::uint32_t src = i / 4;
      int pass = 0;
      while (pass < used && p.lane[pass][d] != src) ++pass;
      if (pass == used) {
        if (used == Plan<B>::kMaxPasses) throw "too many source lanes";
        p.lane[used++][d] = src;
        (src < B / 4 ? p.uses_a : p.uses_b)[pass] = true;
      }
      // Lane d sits at byte 4 * (d % 4) of its 128-bit lane once moved.
      p.shuffle[pass][4 * d + j] = static_cast<std::uint8_t>(4 * (d % 4) + i % 4);
    }
    if (used > p.passes) p.passes = used;
  }
  return p;
}

// The permutation kIdx of a and b on policy V: the plan's passes (V::permute_bytes_pass<plan, p>,
// which holds the intrinsics) ORed together.
template <class V, const auto& kIdx>
typename V::Px run(typename V::Px a, typename V::Px b) {
  static constexpr auto kPlan = plan(kIdx);
  constexpr int kMore = kPlan.passes > 1 ? kPlan.passes - 1 : 0;
  return [&]<int... p>(std::integer_sequence<int, p...>) {
    typename V::Px out = V::template permute_bytes_pass<kPlan, 0>(a, b);
    ((out = V::or_(out, V::template permute_bytes_pass<kPlan, p + 1>(a, b))), ...);
    return out;
  }
  (std::make_integer_sequence<int, kMore>{});
}

}  // namespace qx::byte_plan
