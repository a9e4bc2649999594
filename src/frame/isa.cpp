#include "frame/isa.h"

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
  }
  return false;
}

const char* isa_name(Isa isa) noexcept {
  switch (isa) {
    case Isa::kScalar:
      return "scalar";
    case Isa::kSse2:
      return "sse2";
    case Isa::kSsse3:
      return "ssse3";
    case Isa::kAvx2:
      return "avx2";
    case Isa::kAvx512:
      return "avx512";
    case Isa::kAvx512Vbmi:
      return "avx512vbmi";
  }
  return "?";
}

}  // namespace qx
