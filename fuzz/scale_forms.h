// The forms of the scaling and zoom functions, each behind its export's calling shape: the one
// place where the scale fuzz target depends on how those forms are organised.
#pragma once

#include <vector>

#include "fuzz_kit.h"
#include "qxpixlib.h"
#include "scale/linzoom.h"
#include "scale/resample.h"

namespace qx::fuzz {

using Scale1d = void(std::uint32_t* dst, std::int32_t dst_count, const std::uint32_t* src,
                     std::int32_t src_count);
using ScaleHorz = void(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_stride,
                       const std::uint32_t* src, std::int32_t src_width, std::int32_t height,
                       std::int32_t src_stride);

// Each list holds the scalar form first, then the other forms, then the export.
struct ScaleForms {
  std::vector<Named<Scale1d>> scale_1d;
  std::vector<Named<ScaleHorz>> scale_horz;
  std::vector<Named<ZoomIn1dFn>> zoom_in2x1d = listed(zoom_in2x1d_forms, qx_zoom_in2x1d);
  std::vector<Named<ZoomIn2dFn>> zoom_in2x2d = listed(zoom_in2x2d_forms, qx_zoom_in2x2d);
  std::vector<Named<ZoomOutFn>> zoom_outNx = listed(zoom_out_forms, qx_zoom_outNx);

  ScaleForms() {
    // The linear scalers share one position walk and take a form of the line kernel.
    for (const Form<ScaleLineFn>& f : scale_line_interp_forms) {
      ScaleLineFn* line = f.fn;
      scale_1d.push_back({isa_name(f.isa), f.isa, [line](auto... a) { qx::scale_1d(line, a...); }});
      scale_horz.push_back(
          {isa_name(f.isa), f.isa, [line](auto... a) { qx::scale_horz(line, a...); }});
    }
    scale_1d.push_back({"export", Isa::kScalar, qx_scale_1d});
    scale_horz.push_back({"export", Isa::kScalar, qx_scale_horz});
  }
};

inline const ScaleForms& scale_forms() {
  static const ScaleForms forms;
  return forms;
}

}  // namespace qx::fuzz
