// Which form of each export the library runs on this processor.
//
// The library's interface does not name the form it chose, so qxpix carries the list of forms
// each export has, by instruction-set tier, and picks as the library does: the highest tier the
// export has that the processor supports, at or below the cap QXPIXLIB_MAX_ISA names (a tier
// name; any other value sets no cap). A test compares this table with the library's own lists.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace qxpix {

// Ascending: a processor that has a tier has every tier of its architecture before it (neon, the
// AArch64 tier, comes after the x86 ones, as in the library).
enum class Tier : std::uint8_t { kScalar, kSse2, kSsse3, kAvx2, kAvx512, kAvx512Vbmi, kNeon };
inline constexpr std::string_view kTierNames[] = {"scalar", "sse2",       "ssse3", "avx2",
                                                  "avx512", "avx512vbmi", "neon"};
inline constexpr int kTierCount = static_cast<int>(std::size(kTierNames));

constexpr unsigned tier_set(std::initializer_list<Tier> tiers) {
  unsigned set = 0;
  for (Tier t : tiers) set |= 1u << static_cast<unsigned>(t);
  return set;
}

struct ExportTiers {
  std::string_view name;
  unsigned tiers;  // a bit per Tier
};

namespace tiers {
using enum Tier;
// Kernels written once over the vector policy, built for each vector instruction set of the
// architecture; qx_alpha also has an SSSE3 form of its own.
#if defined(__x86_64__) || defined(__i386__) || defined(_M_X64) || defined(_M_IX86)
inline constexpr unsigned kVector = tier_set({kScalar, kSse2, kAvx2, kAvx512, kAvx512Vbmi});
inline constexpr unsigned kAlpha = kVector | tier_set({kSsse3});
#elif defined(__aarch64__) || defined(_M_ARM64)
inline constexpr unsigned kVector = tier_set({kScalar, kNeon});
inline constexpr unsigned kAlpha = kVector;
#else
inline constexpr unsigned kVector = tier_set({kScalar});
inline constexpr unsigned kAlpha = kVector;
#endif
}  // namespace tiers

// Every export that does work (qx_pixinit and qx_r210argb do none), in the header's order.
inline constexpr ExportTiers kExportTiers[] = {
    {"qx_fill", tiers::kVector},        {"qx_argb2ayuv", tiers::kVector},
    {"qx_ayuv2argb", tiers::kVector},   {"qx_v210yuv422p10", tiers::kVector},
    {"qx_blend", tiers::kVector},       {"qx_blend_t", tiers::kVector},
    {"qx_blend_m", tiers::kVector},     {"qx_blend_mt", tiers::kVector},
    {"qx_blend_mlt", tiers::kVector},   {"qx_lblend", tiers::kVector},
    {"qx_lblend_t", tiers::kVector},    {"qx_lblend_m", tiers::kVector},
    {"qx_lblend_mt", tiers::kVector},   {"qx_lblend_mlt", tiers::kVector},
    {"qx_sblend", tiers::kVector},      {"qx_sblend_t", tiers::kVector},
    {"qx_sblend_m", tiers::kVector},    {"qx_sblend_mt", tiers::kVector},
    {"qx_sblend_mlt", tiers::kVector},  {"qx_alpha", tiers::kAlpha},
    {"qx_mask", tiers::kVector},        {"qx_lin_pix", tiers::kVector},
    {"qx_zoom_in2x1d", tiers::kVector}, {"qx_zoom_in2x2d", tiers::kVector},
    {"qx_scale_1d", tiers::kVector},    {"qx_scale_horz", tiers::kVector},
    {"qx_zoom_outNx", tiers::kVector},
};

// The highest tier this processor supports, lowered to the QXPIXLIB_MAX_ISA cap if one is set.
Tier usable_tier();
// The tier of the form the library runs for `export_name` (scalar for a name not in the table).
Tier chosen_tier(std::string_view export_name);
std::string_view tier_name(Tier t);

}  // namespace qxpix
