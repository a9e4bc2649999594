// The exported entry points of the colour-format conversions.
#include "convert/convert.h"
#include "qxpixlib.h"

extern "C" {

QX_API void QX_CALL qx_argb2ayuv(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  qx::chosen<qx::argb2ayuv_forms>()(dst, src, count);
}

QX_API void QX_CALL qx_ayuv2argb(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  qx::chosen<qx::ayuv2argb_forms>()(dst, src, count);
}

QX_API void QX_CALL qx_v210yuv422p10(std::uint16_t* dst, const std::uint32_t* src,
                                     std::int32_t count) {
  qx::chosen<qx::v210yuv422p10_forms>()(dst, src, count);
}

}  // extern "C"
