#include "blend/blend.h"
#include "qxpixlib.h"

extern "C" {
QX_EXPORT_FAMILY(blend)
}
