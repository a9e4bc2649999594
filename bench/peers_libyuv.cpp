// libyuv beside the kernels it has a counterpart for, on the same buffers and sizes. libyuv takes
// whole pictures: one call per line in line mode, one per picture in frame mode.
#include <libyuv.h>

#include <cstdio>
#include <cstdlib>

#include "bench.h"

namespace qxbench {
namespace {

constexpr std::size_t kPlane = std::size_t{kWidth} * kHeight;  // bytes of one 8-bit plane
constexpr int kStride = 4 * kWidth;                            // bytes of one pixel row

using libyuv::FilterMode;

std::uint8_t* bytes(std::uint32_t* p) { return reinterpret_cast<std::uint8_t*>(p); }

void check(int result, const char* what) {
  if (result == 0) return;
  std::fprintf(stderr, "libyuv %s failed (%d)\n", what, result);
  std::exit(1);
}

// src: a 1920 x src_h picture; dst: dst_w x dst_h.
void scale(int src_h, int dst_w, int dst_h, FilterMode filter) {
  const Buffers& b = buffers();
  check(libyuv::ARGBScale(bytes(b.a), kStride, kWidth, src_h, bytes(b.dst), 4 * dst_w, dst_w, dst_h,
                          filter),
        "ARGBScale");
}

const bool added = [] {
  constexpr const char* kLinear = "linear filter with its own positions and rounding";
  for (const Mode mode : {Mode::kLine, Mode::kFrame}) {
    const int rows = rows_of(mode);
    const Buffers& b = buffers();
    std::uint8_t *y = b.plane, *u = b.plane + kPlane, *v = b.plane + 2 * kPlane;
    add_peer("blend", "", mode, "libyuv:ARGBBlend",
             "premultiplied foreground over the background, its own rounding", [=] {
               check(libyuv::ARGBBlend(bytes(b.b), kStride, bytes(b.a), kStride, bytes(b.dst),
                                       kStride, kWidth, rows),
                     "ARGBBlend");
             });
    add_peer(
        "sblend", "", mode, "libyuv:ARGBUnattenuate",
        "the divide-by-alpha step alone, on one input line", [=] {
          check(libyuv::ARGBUnattenuate(bytes(b.a), kStride, bytes(b.dst), kStride, kWidth, rows),
                "ARGBUnattenuate");
        });
    add_peer("argb2ayuv", "", mode, "libyuv:ARGBToI444",
             "to planar Y, U, V bytes (BT.601 studio range), no alpha", [=] {
               check(libyuv::ARGBToI444(bytes(b.a), kStride, y, kWidth, u, kWidth, v, kWidth,
                                        kWidth, rows),
                     "ARGBToI444");
             });
    add_peer("ayuv2argb", "", mode, "libyuv:I444ToARGB",
             "from planar Y, U, V bytes (BT.601 studio range), alpha set opaque", [=] {
               check(libyuv::I444ToARGB(y, kWidth, u, kWidth, v, kWidth, bytes(b.dst), kStride,
                                        kWidth, rows),
                     "I444ToARGB");
             });
    add_peer("alpha", "", mode, "libyuv:ARGBExtractAlpha",
             "writes alpha as one byte per pixel, not as grey pixels", [=] {
               check(libyuv::ARGBExtractAlpha(bytes(b.a), kStride, y, kWidth, kWidth, rows),
                     "ARGBExtractAlpha");
             });
    add_peer("mask", "", mode, "libyuv:ARGBCopyYToAlpha",
             "replaces alpha by a byte plane in place, no multiply", [=] {
               check(libyuv::ARGBCopyYToAlpha(y, kWidth, bytes(b.dst), kStride, kWidth, rows),
                     "ARGBCopyYToAlpha");
             });
    add_peer("lin_pix", "", mode, "libyuv:ARGBInterpolate",
             "rounds the mix to nearest (ours truncates each product)", [=] {
               check(libyuv::ARGBInterpolate(bytes(b.a), kStride, bytes(b.b), kStride, bytes(b.dst),
                                             kStride, kWidth, rows, 256 - 200),
                     "ARGBInterpolate");
             });
    for (const auto& [variant, dst_w] : {std::pair{"x2/3", 1280}, std::pair{"x2", 3840}})
      for (const char* kernel : {"scale_1d", "scale_horz"})
        add_peer(kernel, variant, mode, "libyuv:ARGBScale", kLinear,
                 [=, w = dst_w] { scale(rows, w, rows, libyuv::kFilterLinear); });
    add_peer("zoom_in2x1d", "", mode, "libyuv:ARGBScale", kLinear,
             [=] { scale(rows, 2 * kWidth, rows, libyuv::kFilterLinear); });
    const int zoom_h = mode == Mode::kLine ? 2 : kHeight;  // as our zoom_in2x2d row
    add_peer("zoom_in2x2d", "", mode, "libyuv:ARGBScale",
             "bilinear filter with its own positions and rounding",
             [=] { scale(zoom_h, 2 * kWidth, 2 * zoom_h, libyuv::kFilterBilinear); });
    const int out_h = mode == Mode::kLine ? 1 : kHeight / 2;  // as our zoom_outNx row
    add_peer("zoom_outNx", "", mode, "libyuv:ARGBScale", "point sampling at its own positions",
             [=] { scale(2 * out_h, kWidth / 2, out_h, libyuv::kFilterNone); });
  }
  return true;
}();

}  // namespace
}  // namespace qxbench
