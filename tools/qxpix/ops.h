// Whole-picture operations, each a loop of the library's exported line kernels over the rows. The
// rows are split into bands, one per thread: every kernel is re-entrant and writes only its own
// output rows. Buffers are laid out so that every call meets the kernel's documented contract
// (see picture.h: rows 16-byte aligned and padded); arguments are checked by the caller.
#pragma once

#include <qxpixlib.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "picture.h"

namespace qxpix {

// Runs body(first_row, end_row) over [0, rows) split into up to `threads` bands.
void for_bands(int rows, int threads, const std::function<void(int, int)>& body);

// ---- blending ----

// The five exports of a blend family, by variant.
struct FamilyExports {
  const char* name;
  decltype(&qx_blend) base;
  decltype(&qx_blend_t) t;
  decltype(&qx_blend_m) m;
  decltype(&qx_blend_mt) mt;
  decltype(&qx_blend_mlt) mlt;
};
inline constexpr FamilyExports kFamilies[] = {
    {"blend", qx_blend, qx_blend_t, qx_blend_m, qx_blend_mt, qx_blend_mlt},
    {"lblend", qx_lblend, qx_lblend_t, qx_lblend_m, qx_lblend_mt, qx_lblend_mlt},
    {"sblend", qx_sblend, qx_sblend_t, qx_sblend_m, qx_sblend_mt, qx_sblend_mlt},
};

// Indexes kFamilies.
enum class Family { kBlend, kLblend, kSblend };
// "blend", "lblend", "sblend"
Family family_named(const std::string& name);

struct BlendChoice {
  Family family = Family::kBlend;
  bool has_opacity = false;
  std::uint32_t opacity = 256;
  const Bytes* mask = nullptr;        // same size as the pictures
  const std::uint8_t* lut = nullptr;  // 256 bytes; needs a mask
};
// The export a choice calls, e.g. "qx_sblend_mt".
std::string blend_export(const BlendChoice& choice);
Picture blend(const Picture& bg, const Picture& fg, const BlendChoice& choice, int threads);

// ---- one picture in, one out ----

Picture argb_to_ayuv(const Picture& src, int threads);
Picture ayuv_to_argb(const Picture& src, int threads);
Picture alpha(const Picture& src, int threads);
Picture apply_mask(const Picture& src, const Bytes& mask, int threads);
Picture mix(const Picture& a, const Picture& b, std::uint32_t weight, int threads);
Picture fill(int width, int height, std::uint32_t value, int threads);

// Every row doubled in width (qx_zoom_in2x1d): 2 * width x height.
Picture zoom_in_rows(const Picture& src, int threads);
// Doubled in both directions (qx_zoom_in2x2d): 2 * width x 2 * height.
Picture zoom_in_picture(const Picture& src, int threads);
// The kernels double whole groups of four source pixels; a width that is not a multiple of 4 is
// doubled as if the row went on with copies of its last pixel, and the output cut to 2 * width.
// Output pixel 2i and 2i + 1 depend only on source pixels up to i, so the cut output is exactly
// what the kernels give for the pixels the row has.

// Rows resampled to `width` pixels (qx_scale_horz); width a multiple of 4 and at least 4 (the
// kernel writes whole groups of four), src.width at least 2 (and, as every picture read here, far
// below the kernel's limit of 2^23).
Picture scale(const Picture& src, int width, int threads);

// Whole-factor shrink (qx_zoom_outNx). zoom_out_reach() tells whether the samples stay inside
// the source (the kernel does not clamp them); zoom_out() needs it to be true.
struct Reach {
  bool inside;
  int fx, fy;          // the factors, source / output rounded up
  int last_x, last_y;  // the last source column and row sampled
};
Reach zoom_out_reach(int src_width, int src_height, int width, int height);
Picture zoom_out(const Picture& src, int width, int height, int threads);

// ---- v210 ----

// Bytes of one v210 row of `width` pixels: 128 bytes per started group of 48 pixels.
std::size_t v210_row_bytes(int width);
struct Planes {
  Plane16 y, cb, cr;  // width x height, width / 2 x height, width / 2 x height
};
// `data` holds `height` rows of v210_row_bytes(width) bytes; width even.
Planes unpack_v210(const std::vector<std::uint8_t>& data, int width, int height, int threads);
// The planes one after the other, little-endian 16-bit samples (yuv422p10le).
std::vector<std::uint8_t> planar_bytes(const Planes& planes);

}  // namespace qxpix
