// The qx_lblend family: the colour is the linear mix of background and foreground by the
// foreground weight w alone, the alpha is additive:
//   dst.c = bg.c * (256 - w) / 256 + fg.c * w / 256       (c = bytes 0..2)
//   dst.a = min(255, bg.a + fg.a * w / 256)
// each product truncated on its own. w is formed per variant as in frame/family.h.
#pragma once

#include "frame/family.h"
#include "frame/isa.h"

namespace qx {

QX_FAMILY_FORMS(lblend)

}  // namespace qx
