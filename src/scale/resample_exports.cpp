// The exported scalers and zoom-out. The linear scalers run the form of scale_line_interp chosen
// for this processor, qx_zoom_outNx the form of zoom_out chosen for it.
#include "qxpixlib.h"
#include "scale/resample.h"

extern "C" {

QX_API void QX_CALL qx_scale_1d(std::uint32_t* dst, std::int32_t dst_count,
                                const std::uint32_t* src, std::int32_t src_count) {
  qx::scale_1d(qx::chosen<qx::scale_line_interp_forms>(), dst, dst_count, src, src_count);
}

QX_API void QX_CALL qx_scale_horz(std::uint32_t* dst, std::int32_t dst_width,
                                  std::int32_t dst_stride, const std::uint32_t* src,
                                  std::int32_t src_width, std::int32_t height,
                                  std::int32_t src_stride) {
  qx::scale_horz(qx::chosen<qx::scale_line_interp_forms>(), dst, dst_width, dst_stride, src,
                 src_width, height, src_stride);
}

QX_API void QX_CALL qx_zoom_outNx(std::uint32_t* dst, std::int32_t dst_width,
                                  std::int32_t dst_height, const std::uint32_t* src,
                                  std::int32_t src_width, std::int32_t src_height) {
  qx::chosen<qx::zoom_out_forms>()(dst, dst_width, dst_height, src, src_width, src_height);
}

}  // extern "C"
