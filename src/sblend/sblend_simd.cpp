#include "frame/family_vec.h"
#include "sblend/sblend.h"
#include "sblend/sblend_vec.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {
QX_DEFINE_VECTOR_FAMILY(sblend, SblendArith)
}
