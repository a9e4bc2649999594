// The exported entry points of the qx_sblend family.
#include "qxpixlib.h"
#include "sblend/sblend.h"

extern "C" {
QX_EXPORT_FAMILY(sblend)
}
