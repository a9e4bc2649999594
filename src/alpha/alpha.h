// qx_alpha: a grey picture of a line's alpha (every byte of a pixel = its alpha).
// qx_mask: colour bytes copied, alpha scaled by a mask byte, floor(a * m / 256).
// Both walk the line through the shared frame (frame/line.h): exact writes, in-place safe, and
// qx_mask reads its mask four bytes at a time, also in the tail.
#pragma once

#include <cstdint>

#include "frame/isa.h"

namespace qx {

using AlphaFn = void(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count);
using MaskFn = void(std::uint32_t* dst, const std::uint32_t* src, const std::uint8_t* mask,
                    std::int32_t count);

QX_KERNEL_FORMS(MaskFn, mask)

namespace scalar {
AlphaFn alpha;
}
QX_FOR_EACH_VECTOR_ISA(QX_DECLARE_FORM_, AlphaFn, alpha)
#if QX_X86
namespace ssse3 {
AlphaFn alpha;  // one byte shuffle per four pixels
}
#endif

inline constexpr Form<AlphaFn> alpha_forms[] = {
    {Isa::kScalar, scalar::alpha},
#if QX_X86
    {Isa::kSse2, sse2::alpha},     {Isa::kSsse3, ssse3::alpha},           {Isa::kAvx2, avx2::alpha},
    {Isa::kAvx512, avx512::alpha}, {Isa::kAvx512Vbmi, avx512vbmi::alpha},
#else
    QX_FOR_EACH_VECTOR_ISA(QX_LIST_FORM_, AlphaFn, alpha)
#endif
};

}  // namespace qx
