// qx_fill: one pixel value stored unchanged into every pixel of a line.
#pragma once

#include <cstdint>

#include "frame/isa.h"

namespace qx {

using FillFn = void(std::uint32_t* dst, std::uint32_t value, std::int32_t count);

namespace scalar {
FillFn fill;
}
#if QX_X86
namespace sse2 {
FillFn fill;
}
#endif

inline constexpr Form<FillFn> fill_forms[] = {
    {Isa::kScalar, scalar::fill},
#if QX_X86
    {Isa::kSse2, sse2::fill},
#endif
};

}  // namespace qx
