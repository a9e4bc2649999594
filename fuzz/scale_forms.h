// The forms of the scaling and zoom functions, each behind its export's calling shape: the one
// place where the scale fuzz target depends on how those forms are organised.
#pragma once

#include <vector>

#include "fuzz_kit.h"
#include "qxpixlib.h"
#include "scale/linzoom.h"
#include "scale/resample.h"

namespace qx::fuzz {

// Each list holds the scalar form first, then the other forms, then the export.
struct ScaleForms {
  std::vector<Named<Scale1dFn>> scale_1d = listed(scale_1d_forms, qx_scale_1d);
  std::vector<Named<ScaleHorzFn>> scale_horz = listed(scale_horz_forms, qx_scale_horz);
  std::vector<Named<ZoomIn1dFn>> zoom_in2x1d = listed(zoom_in2x1d_forms, qx_zoom_in2x1d);
  std::vector<Named<ZoomIn2dFn>> zoom_in2x2d = listed(zoom_in2x2d_forms, qx_zoom_in2x2d);
  std::vector<Named<ZoomOutFn>> zoom_outNx = listed(zoom_out_forms, qx_zoom_outNx);
};

inline const ScaleForms& scale_forms() {
  static const ScaleForms forms;
  return forms;
}

}  // namespace qx::fuzz
