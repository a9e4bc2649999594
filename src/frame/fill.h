// qx_fill: one pixel value stored unchanged into every pixel of a line.
#pragma once

#include <cstdint>

#include "frame/isa.h"

namespace qx {

using FillFn = void(std::uint32_t* dst, std::uint32_t value, std::int32_t count);

QX_KERNEL_FORMS(FillFn, fill)

}  // namespace qx
