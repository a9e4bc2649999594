// The scalar form of each export, under the export's name and with its argument list.
#include <cstring>

#include "alpha/alpha.h"
#include "blend/blend.h"
#include "convert/convert.h"
#include "frame/fill.h"
#include "host/check.h"
#include "lblend/lblend.h"
#include "sblend/sblend.h"
#include "scale/linzoom.h"
#include "scale/resample.h"

namespace {

template <class Fn>
qx_entry entry(Fn* fn) {
  return reinterpret_cast<qx_entry>(fn);
}

}  // namespace

extern "C" qx_entry qx_reference(const char* name) {
  using namespace qx;
  static const struct {
    const char* name;
    qx_entry fn;
  } table[] = {
      {"qx_fill", entry(fill_forms[0].fn)},
      {"qx_argb2ayuv", entry(argb2ayuv_forms[0].fn)},
      {"qx_ayuv2argb", entry(ayuv2argb_forms[0].fn)},
      {"qx_v210yuv422p10", entry(v210yuv422p10_forms[0].fn)},
      {"qx_blend", entry(blend_forms[0].fn)},
      {"qx_blend_t", entry(blend_t_forms[0].fn)},
      {"qx_blend_m", entry(blend_m_forms[0].fn)},
      {"qx_blend_mt", entry(blend_mt_forms[0].fn)},
      {"qx_blend_mlt", entry(blend_mlt_forms[0].fn)},
      {"qx_lblend", entry(lblend_forms[0].fn)},
      {"qx_lblend_t", entry(lblend_t_forms[0].fn)},
      {"qx_lblend_m", entry(lblend_m_forms[0].fn)},
      {"qx_lblend_mt", entry(lblend_mt_forms[0].fn)},
      {"qx_lblend_mlt", entry(lblend_mlt_forms[0].fn)},
      {"qx_sblend", entry(sblend_forms[0].fn)},
      {"qx_sblend_t", entry(sblend_t_forms[0].fn)},
      {"qx_sblend_m", entry(sblend_m_forms[0].fn)},
      {"qx_sblend_mt", entry(sblend_mt_forms[0].fn)},
      {"qx_sblend_mlt", entry(sblend_mlt_forms[0].fn)},
      {"qx_alpha", entry(alpha_forms[0].fn)},
      {"qx_mask", entry(mask_forms[0].fn)},
      {"qx_lin_pix", entry(lin_pix_forms[0].fn)},
      {"qx_zoom_in2x1d", entry(zoom_in2x1d_forms[0].fn)},
      {"qx_zoom_in2x2d", entry(zoom_in2x2d_forms[0].fn)},
      {"qx_scale_1d", entry(scale_1d_forms[0].fn)},
      {"qx_scale_horz", entry(scale_horz_forms[0].fn)},
      {"qx_zoom_outNx", entry(zoom_out_forms[0].fn)},
  };
  for (const auto& t : table)
    if (std::strcmp(t.name, name) == 0) return t.fn;
  return nullptr;
}
