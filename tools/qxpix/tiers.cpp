#include "tiers.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace qxpix {
namespace {

Tier processor_tier() {
#if (defined(__x86_64__) || defined(__i386__)) && (defined(__GNUC__) || defined(__clang__))
  // The same tests, in the same order, as the library's own: each tier needs the ones below it,
  // and __builtin_cpu_supports also checks that the system saves the wider registers.
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse2")) return Tier::kScalar;
  if (!__builtin_cpu_supports("ssse3")) return Tier::kSse2;
  if (!__builtin_cpu_supports("avx2")) return Tier::kSsse3;
  if (!__builtin_cpu_supports("avx512bw") || !__builtin_cpu_supports("avx512vl"))
    return Tier::kAvx2;
  if (!__builtin_cpu_supports("avx512vbmi")) return Tier::kAvx512;
  return Tier::kAvx512Vbmi;
#elif defined(__aarch64__)
  return Tier::kNeon;  // part of every AArch64 processor
#else
  return Tier::kScalar;
#endif
}

}  // namespace

Tier usable_tier() {
  static const Tier tier = [] {
    Tier t = processor_tier();
    if (const char* cap = std::getenv("QXPIXLIB_MAX_ISA")) {
      std::string name(cap);  // the library ignores case too
      std::transform(name.begin(), name.end(), name.begin(),
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
      for (int i = 0; i < kTierCount; ++i)
        if (kTierNames[i] == name && i < static_cast<int>(t)) t = static_cast<Tier>(i);
    }
    return t;
  }();
  return tier;
}

Tier chosen_tier(std::string_view export_name) {
  for (const ExportTiers& e : kExportTiers) {
    if (e.name != export_name) continue;
    for (int i = static_cast<int>(usable_tier()); i > 0; --i)
      if (e.tiers >> i & 1) return static_cast<Tier>(i);
  }
  return Tier::kScalar;
}

std::string_view tier_name(Tier t) { return kTierNames[static_cast<int>(t)]; }

}  // namespace qxpix
