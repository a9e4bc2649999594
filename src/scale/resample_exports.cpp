// The exported scalers and zoom-out: one call through the form chosen for this processor.
#include "qxpixlib.h"
#include "scale/resample.h"

extern "C" {

QX_API void QX_CALL qx_scale_1d(std::uint32_t* dst, std::int32_t dst_count,
                                const std::uint32_t* src, std::int32_t src_count) {
  qx::chosen<qx::scale_1d_forms>()(dst, dst_count, src, src_count);
}

QX_API void QX_CALL qx_scale_horz(std::uint32_t* dst, std::int32_t dst_width,
                                  std::int32_t dst_stride, const std::uint32_t* src,
                                  std::int32_t src_width, std::int32_t height,
                                  std::int32_t src_stride) {
  qx::chosen<qx::scale_horz_forms>()(dst, dst_width, dst_stride, src, src_width, height,
                                     src_stride);
}

QX_API void QX_CALL qx_zoom_outNx(std::uint32_t* dst, std::int32_t dst_width,
                                  std::int32_t dst_height, const std::uint32_t* src,
                                  std::int32_t src_width, std::int32_t src_height) {
  qx::chosen<qx::zoom_out_forms>()(dst, dst_width, dst_height, src, src_width, src_height);
}

}  // extern "C"
