// The exported entry points of the qx_lblend family, each one call through the form chosen for
// this processor.
#include "lblend/lblend.h"
#include "qxpixlib.h"

extern "C" {
QX_EXPORT_FAMILY(lblend)
}
