#include "catalog.h"

#include <stdexcept>

#include "alpha/alpha.h"
#include "blend/blend.h"
#include "convert/convert.h"
#include "frame/fill.h"
#include "lblend/lblend.h"
#include "qxpixlib.h"
#include "sblend/sblend.h"
#include "scale/linzoom.h"

namespace qx::harness {

const std::vector<LineKernel>& line_kernels() {
  static const std::vector<LineKernel> kernels = {
      line_kernel("fill", fill_forms, qx_fill),
      line_kernel("blend", blend_forms, qx_blend),
      line_kernel("blend_t", blend_t_forms, qx_blend_t),
      line_kernel("blend_m", blend_m_forms, qx_blend_m),
      line_kernel("blend_mt", blend_mt_forms, qx_blend_mt),
      line_kernel("blend_mlt", blend_mlt_forms, qx_blend_mlt),
      line_kernel("lblend", lblend_forms, qx_lblend),
      line_kernel("lblend_t", lblend_t_forms, qx_lblend_t),
      line_kernel("lblend_m", lblend_m_forms, qx_lblend_m),
      line_kernel("lblend_mt", lblend_mt_forms, qx_lblend_mt),
      line_kernel("lblend_mlt", lblend_mlt_forms, qx_lblend_mlt),
      line_kernel("sblend", sblend_forms, qx_sblend),
      line_kernel("sblend_t", sblend_t_forms, qx_sblend_t),
      line_kernel("sblend_m", sblend_m_forms, qx_sblend_m),
      line_kernel("sblend_mt", sblend_mt_forms, qx_sblend_mt),
      line_kernel("sblend_mlt", sblend_mlt_forms, qx_sblend_mlt),
      line_kernel("argb2ayuv", argb2ayuv_forms, qx_argb2ayuv),
      line_kernel("ayuv2argb", ayuv2argb_forms, qx_ayuv2argb),
      line_kernel("alpha", alpha_forms, qx_alpha),
      line_kernel("mask", mask_forms, qx_mask),
      line_kernel("lin_pix", lin_pix_forms, qx_lin_pix),
  };
  return kernels;
}

const LineKernel& line_kernel_named(const std::string& name) {
  for (const LineKernel& k : line_kernels())
    if (k.name == name) return k;
  throw std::out_of_range("no line kernel " + name);
}

namespace {
std::uint8_t random_byte(Rng& rng) {
  static constexpr std::uint8_t kEdges[] = {0, 1, 254, 255};
  const std::uint32_t r = rng();
  return (r & 3u) == 0 ? kEdges[(r >> 2) & 3u] : static_cast<std::uint8_t>(r >> 8);
}
}  // namespace

void random_pixels(std::span<std::uint32_t> out, Rng& rng) {
  for (std::uint32_t& p : out)
    p = random_byte(rng) | random_byte(rng) << 8 | random_byte(rng) << 16 |
        static_cast<std::uint32_t>(random_byte(rng)) << 24;
}

void random_bytes(std::span<std::uint8_t> out, Rng& rng) {
  for (std::uint8_t& b : out) b = random_byte(rng);
}

}  // namespace qx::harness
