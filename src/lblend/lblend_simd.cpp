#include "frame/family_vec.h"
#include "lblend/lblend.h"
#include "lblend/lblend_vec.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {
QX_DEFINE_VECTOR_FAMILY(lblend, LblendArith)
}
