#include "frame/isa.h"

#include <cstdlib>
#include <iterator>

#if QX_X86 && defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

namespace qx {
namespace {

struct Features {
  bool sse2 = false, ssse3 = false, avx2 = false, avx512 = false, avx512vbmi = false;
};

Features detect() noexcept {
  Features f;
#if QX_X86 && (defined(__GNUC__) || defined(__clang__))
  // __builtin_cpu_supports reports AVX2 and AVX-512 only when the operating system saves their
  // registers: libgcc tests CPUID's OSXSAVE bit, then reads XCR0 with XGETBV (the YMM state for
  // AVX2; the opmask and both ZMM states for AVX-512). It is plain CPUID/XGETBV with no OS call,
  // the same routine on Linux and on Windows (MinGW links it statically from libgcc).
  __builtin_cpu_init();
  f.sse2 = __builtin_cpu_supports("sse2");
  f.ssse3 = f.sse2 && __builtin_cpu_supports("ssse3");
  f.avx2 = f.ssse3 && __builtin_cpu_supports("avx2");
  f.avx512 = f.avx2 && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
  f.avx512vbmi = f.avx512 && __builtin_cpu_supports("avx512vbmi");
#elif QX_X86 && defined(_MSC_VER)
  int r[4];
  __cpuid(r, 1);
  f.sse2 = (r[3] >> 26) & 1;
  f.ssse3 = f.sse2 && ((r[2] >> 9) & 1);
  // Wider tiers are not selected on this compiler yet.
#endif
  return f;
}

}  // namespace

bool cpu_supports(Isa isa) noexcept {
  static const Features f = detect();
  switch (isa) {
    case Isa::kScalar:
      return true;
    case Isa::kSse2:
      return f.sse2;
    case Isa::kSsse3:
      return f.ssse3;
    case Isa::kAvx2:
      return f.avx2;
    case Isa::kAvx512:
      return f.avx512;
    case Isa::kAvx512Vbmi:
      return f.avx512vbmi;
    case Isa::kNeon:
      return QX_AARCH64;  // part of every AArch64 processor
  }
  return false;
}

namespace {
// Every tier's name, indexed by its Isa value: the one list that isa_name and the cap's parser
// share.
constexpr const char* kIsaNames[] = {"scalar", "sse2",       "ssse3", "avx2",
                                     "avx512", "avx512vbmi", "neon"};
constexpr Isa kTopIsa = static_cast<Isa>(std::size(kIsaNames) - 1);

bool same_name(const char* a, const char* b) noexcept {
  const auto lower = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  };
  for (; *a && *b; ++a, ++b)
    if (lower(*a) != lower(*b)) return false;
  return *a == *b;
}

Isa read_cap() noexcept {
#if defined(_MSC_VER)
#pragma warning(suppress : 4996)  // getenv: read once, before any form is chosen
#endif
  const char* value = std::getenv("QXPIXLIB_MAX_ISA");
  Isa cap = kTopIsa;
  if (value) isa_from_name(value, cap);  // an unknown name leaves the cap at the top
  return cap;
}
}  // namespace

const char* isa_name(Isa isa) noexcept {
  const auto i = static_cast<std::size_t>(isa);
  return i < std::size(kIsaNames) ? kIsaNames[i] : "?";
}

bool isa_from_name(const char* name, Isa& isa) noexcept {
  for (std::size_t i = 0; i < std::size(kIsaNames); ++i)
    if (same_name(name, kIsaNames[i])) {
      isa = static_cast<Isa>(i);
      return true;
    }
  return false;
}

Isa max_isa() noexcept {
  static const Isa cap = read_cap();
  return cap;
}

}  // namespace qx
