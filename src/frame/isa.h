// Instruction-set tiers and the per-kernel list of forms the library chooses from.
#pragma once

#include <cstdint>

#if defined(__x86_64__) || defined(_M_X64) || defined(__i386__) || defined(_M_IX86)
#define QX_X86 1
#else
#define QX_X86 0
#endif
#if defined(__aarch64__) || defined(_M_ARM64)
#define QX_AARCH64 1
#else
#define QX_AARCH64 0
#endif

namespace qx {

// Tiers in ascending order: a processor that has a tier has every tier of its architecture before
// it. kAvx512 is AVX-512 F, BW and VL; kAvx512Vbmi adds the byte permutes of AVX-512 VBMI. kNeon
// (AArch64's baseline) comes after the x86 tiers: a cap at an x86 tier leaves an ARM processor its
// scalar forms, and the cap kNeon leaves an x86 processor every tier.
enum class Isa : std::uint8_t { kScalar, kSse2, kSsse3, kAvx2, kAvx512, kAvx512Vbmi, kNeon };

// True when this processor (and its operating system) can run code built for `isa`.
// Evaluated once per process; kScalar is always supported.
bool cpu_supports(Isa isa) noexcept;

// The tier's lower-case name ("scalar", "sse2", ...), "?" for a value that names no tier.
const char* isa_name(Isa isa) noexcept;

// The highest tier forms may be chosen from: the tier named by the environment variable
// QXPIXLIB_MAX_ISA (an isa_name, case ignored), or the top tier when it is unset or names no tier.
// Read once per process, on first use, so every choice of forms sees the same cap.
Isa max_isa() noexcept;
// Parses a tier name as QXPIXLIB_MAX_ISA takes it; false when `name` names no tier.
bool isa_from_name(const char* name, Isa& isa) noexcept;

// True when forms built for `isa` may be chosen: the processor runs them and the cap allows them.
inline bool may_choose(Isa isa) noexcept { return isa <= max_isa() && cpu_supports(isa); }

// One implementation of a kernel. Every form of a kernel computes the same bytes.
template <class Fn>
struct Form {
  Isa isa;  // what the processor must support to run it; isa_name() names the form
  Fn* fn;
};

// The most capable form this processor runs at or below the cap (max_isa). Forms are listed from
// the scalar form up, so the last such entry wins; the scalar form at index 0 is the floor on
// every processor and under every cap.
template <class Fn, std::size_t N>
Fn* best_form(const Form<Fn> (&forms)[N]) noexcept {
  Fn* fn = forms[0].fn;
  for (const Form<Fn>& f : forms)
    if (may_choose(f.isa)) fn = f.fn;
  return fn;
}

// The form an export calls: chosen on first use, then fixed for the life of the process.
template <const auto& kForms>
auto chosen() noexcept {
  static const auto fn = best_form(kForms);
  return fn;
}

}  // namespace qx

// ---- Declaring and listing forms ------------------------------------------------------------
// Kernels written once over a vector policy (src/simd/) are built once per vector instruction set
// into namespace qx::<set> (see src/CMakeLists.txt). QX_FOR_EACH_VECTOR_ISA(M, args...) expands
// M(namespace, Isa enumerator, args...) for each such set, in ascending order.
// QX_FOR_EACH_PERMUTE_ISA does the same for the sets whose policy also permutes bytes across the
// whole vector (V::permute_bytes2), for which the kernels that need it are built.
#if QX_X86
#define QX_FOR_EACH_VECTOR_ISA(M, ...) \
  M(sse2, kSse2, __VA_ARGS__)          \
  M(avx2, kAvx2, __VA_ARGS__)          \
  M(avx512, kAvx512, __VA_ARGS__) M(avx512vbmi, kAvx512Vbmi, __VA_ARGS__)
#define QX_FOR_EACH_PERMUTE_ISA(M, ...) \
  M(avx2, kAvx2, __VA_ARGS__)           \
  M(avx512, kAvx512, __VA_ARGS__) M(avx512vbmi, kAvx512Vbmi, __VA_ARGS__)
#elif QX_AARCH64
#define QX_FOR_EACH_VECTOR_ISA(M, ...) M(neon, kNeon, __VA_ARGS__)
#define QX_FOR_EACH_PERMUTE_ISA(M, ...) M(neon, kNeon, __VA_ARGS__)
#else
#define QX_FOR_EACH_VECTOR_ISA(M, ...)
#define QX_FOR_EACH_PERMUTE_ISA(M, ...)
#endif
#define QX_DECLARE_FORM_(ns, isa, Fn, name) \
  namespace ns {                            \
  Fn name;                                  \
  }
#define QX_LIST_FORM_(ns, isa, Fn, name) {::qx::Isa::isa, ns::name},

// Inside namespace qx: declares scalar::name and one vector form per instruction set, all of
// function type Fn, and lists them as name_forms for qx::chosen.
#define QX_KERNEL_FORMS(Fn, name)                    \
  namespace scalar {                                 \
  Fn name;                                           \
  }                                                  \
  QX_FOR_EACH_VECTOR_ISA(QX_DECLARE_FORM_, Fn, name) \
  inline constexpr ::qx::Form<Fn> name##_forms[] = { \
      {::qx::Isa::kScalar, scalar::name}, QX_FOR_EACH_VECTOR_ISA(QX_LIST_FORM_, Fn, name)};
