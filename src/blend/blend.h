// The qx_blend family: foreground over background, the result in premultiplied form, every scale
// 1/256. With w the foreground weight (family.h) and v = 256 - w, per pixel:
//   colour bytes 0..2:  dst.c = fg.c * w / 256 + bg.c * bg.a * v / 65536
//   alpha byte 3:       dst.a = 255 * w / 256 + 255 * bg.a * v / 65536
// each quotient truncated on its own. Alpha is the colour formula with 255 in place of both inputs'
// colour. Every sum is at most 254, so no output byte is ever 255.
#pragma once

#include "frame/family.h"

namespace qx {

QX_FAMILY_FORMS(blend)

}  // namespace qx
