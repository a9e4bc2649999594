#include "blend/blend.h"
#include "blend/blend_vec.h"
#include "frame/family_vec.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {
QX_DEFINE_VECTOR_FAMILY(blend, BlendArith)
}
