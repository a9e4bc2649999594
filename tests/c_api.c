/* Compiled as C: the public header must be usable from C hosts. */
#include <string.h>

#include "qxpixlib.h"

int qx_c_api_smoke(void) {
  uint32_t line[6] = {0, 0, 0, 0, 0, 7};
  qx_pixinit();
  qx_fill(line, 0x80FF0000u, 5);
  return (line[0] == 0x80FF0000u && line[4] == 0x80FF0000u && line[5] == 7) ? 0 : 1;
}

/* Calls the stub as hosts do, as a converter (dst, src, count); the caller pops the arguments, so
 * they are harmless. Made from C, where a call through a pointer of another function type is what
 * such hosts do (C++ checkers flag it). */
void qx_c_call_stub_as_converter(uint32_t* dst, const uint32_t* src, int32_t count) {
  typedef void(QX_CALL * Converter)(uint32_t*, const uint32_t*, int32_t);
  Converter stub = (Converter)qx_r210argb;
  stub(dst, src, count);
}
