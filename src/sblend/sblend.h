// qx_sblend family: straight-alpha source-over compositing. The foreground weight F (see
// frame/family.h) gives the resulting alpha Aout = F + B * (255 - F) / 256 (B = bg.a), and each
// colour channel moves from the background toward the foreground by K / 256 with
// K = ReciprocalTable[Aout] * F / 256, which approximates F / Aout:
//   dst.x = bg.x + floor(K * (fg.x - bg.x) / 256),   dst.a = Aout.
#pragma once

#include "frame/family.h"

namespace qx {

QX_FAMILY_FORMS(sblend)

}  // namespace qx
