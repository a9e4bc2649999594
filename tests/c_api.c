/* Compiled as C: the public header must be usable from C hosts. */
#include <string.h>

#include "qxpixlib.h"

int qx_c_api_smoke(void) {
  uint32_t line[6] = {0, 0, 0, 0, 0, 7};
  qx_pixinit();
  qx_fill(line, 0x80FF0000u, 5);
  return (line[0] == 0x80FF0000u && line[4] == 0x80FF0000u && line[5] == 7) ? 0 : 1;
}
