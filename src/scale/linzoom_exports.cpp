// The exported interpolation and zoom-in functions: one call through the form chosen for this
// processor.
#include "qxpixlib.h"
#include "scale/linzoom.h"

extern "C" {

QX_API void QX_CALL qx_lin_pix(std::uint32_t* dst, const std::uint32_t* src1,
                               const std::uint32_t* src2, std::uint32_t weight,
                               std::int32_t count) {
  qx::chosen<qx::lin_pix_forms>()(dst, src1, src2, weight, count);
}

QX_API void QX_CALL qx_zoom_in2x1d(std::uint32_t* dst, const std::uint32_t* src,
                                   std::int32_t count) {
  qx::chosen<qx::zoom_in2x1d_forms>()(dst, src, count);
}

QX_API void QX_CALL qx_zoom_in2x2d(std::uint32_t* dst, const std::uint32_t* src, std::int32_t width,
                                   std::int32_t height, std::int32_t src_stride) {
  qx::chosen<qx::zoom_in2x2d_forms>()(dst, src, width, height, src_stride);
}

}  // extern "C"
