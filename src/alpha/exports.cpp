// The exported alpha and mask operations: one call through the form chosen for this processor.
#include "alpha/alpha.h"
#include "qxpixlib.h"

extern "C" {

QX_API void QX_CALL qx_alpha(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  qx::chosen<qx::alpha_forms>()(dst, src, count);
}

QX_API void QX_CALL qx_mask(std::uint32_t* dst, const std::uint32_t* src, const std::uint8_t* mask,
                            std::int32_t count) {
  qx::chosen<qx::mask_forms>()(dst, src, mask, count);
}

}  // extern "C"
