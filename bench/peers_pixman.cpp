// pixman's OVER on a8r8g8b8 beside the blend family, on the same buffers and sizes: one call per
// line in line mode, one per picture in frame mode.
#include <pixman.h>

#include <cstdio>
#include <cstdlib>

#include "bench.h"

namespace qxbench {
namespace {

// Images over the benchmark's buffers, created once and never freed.
pixman_image_t* image(pixman_format_code_t format, void* bits, int rows, int stride) {
  pixman_image_t* i =
      pixman_image_create_bits(format, kWidth, rows, static_cast<std::uint32_t*>(bits), stride);
  if (!i) {
    std::fprintf(stderr, "pixman_image_create_bits failed\n");
    std::exit(1);
  }
  return i;
}

const bool added = [] {
  for (const Mode mode : {Mode::kLine, Mode::kFrame}) {
    const int rows = rows_of(mode);
    const Buffers& b = buffers();
    // The composite is in place: dst holds the background and receives the result.
    pixman_image_t* fg = image(PIXMAN_a8r8g8b8, b.b, rows, 4 * kWidth);
    pixman_image_t* dst = image(PIXMAN_a8r8g8b8, b.dst, rows, 4 * kWidth);
    pixman_image_t* mask = image(PIXMAN_a8, b.mask, rows, kWidth);
    add_peer("blend", "", mode, "pixman:OVER",
             "premultiplied foreground over the background, in place", [=] {
               pixman_image_composite32(PIXMAN_OP_OVER, fg, nullptr, dst, 0, 0, 0, 0, 0, 0, kWidth,
                                        rows);
             });
    add_peer("blend_m", "", mode, "pixman:OVER",
             "premultiplied foreground through an 8-bit mask over the background, in place", [=] {
               pixman_image_composite32(PIXMAN_OP_OVER, fg, mask, dst, 0, 0, 0, 0, 0, 0, kWidth,
                                        rows);
             });
  }
  return true;
}();

}  // namespace
}  // namespace qxbench
