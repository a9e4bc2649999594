// Scaling and zoom: qx_scale_1d, qx_scale_horz, qx_zoom_in2x1d, qx_zoom_in2x2d and qx_zoom_outNx on
// picture sizes, strides (either sign) and misalignments the input picks; every form and the
// export against the scalar form, on exact-size buffers: each source row's pixels (at least 16
// bytes for the zoom-in rows), the rows a stride reaches, the zoom-in outputs with what they do
// not write holding the same prior bytes for every form, and for qx_zoom_outNx the source up to
// the last pixel its rounded-up factors sample.
#include <algorithm>

#include "scale_forms.h"

namespace qx::fuzz {
namespace {

// The pixels spanned by `rows` rows of `width` pixels, `stride` apart, and the index of row 0
// within them (negative strides put it last).
struct Span {
  std::size_t pixels = 0, first = 0;
};
Span rows_span(std::int32_t rows, std::int32_t width, std::int32_t stride) {
  if (rows <= 0 || width <= 0) return {};
  const std::int64_t last = std::int64_t{rows - 1} * stride;
  const std::int64_t lo = std::min<std::int64_t>(0, last), hi = std::max<std::int64_t>(0, last);
  return {static_cast<std::size_t>(hi - lo + width), static_cast<std::size_t>(-lo)};
}

void fuzz_scale_1d(Input& in, const ScaleForms& forms) {
  const std::int32_t dst_count = in.ConsumeIntegralInRange(-2, 700);
  const std::int32_t src_count = in.ConsumeIntegralInRange(-2, 3000);
  const std::size_t dst_px = std::max(dst_count, 0), src_px = std::max(src_count, 0);
  const Buffer src(4 * src_px, offset(in, 4));
  src.assign(bytes(in, src.size()));
  const std::size_t dst_offset = offset(in, 4);
  expect_forms_agree(forms.scale_1d, "scale_1d", 4 * dst_px, dst_offset, bytes(in, 4 * dst_px),
                     [&](const auto& fn, std::uint8_t* dst) {
                       fn(reinterpret_cast<std::uint32_t*>(dst), dst_count, src.as<std::uint32_t>(),
                          src_count);
                     });
}

void fuzz_scale_horz(Input& in, const ScaleForms& forms) {
  const std::int32_t dst_width = in.ConsumeIntegralInRange(-2, 300);
  const std::int32_t src_width = in.ConsumeIntegralInRange(-2, 1000);
  const std::int32_t height = in.ConsumeIntegralInRange(-2, 6);
  // Output rows never overlap (their order is not part of the contract); source rows may.
  const std::int32_t dst_stride =
      (in.ConsumeBool() ? 1 : -1) * (std::max(dst_width, 0) + in.ConsumeIntegralInRange(0, 8));
  const std::int32_t src_stride = in.ConsumeIntegralInRange(-1008, 1008);
  const Span dst_span = rows_span(height, dst_width, dst_stride);
  const Span src_span = rows_span(height, src_width, src_stride);
  const Buffer src(4 * src_span.pixels, offset(in, 4));
  src.assign(bytes(in, src.size()));
  const std::size_t dst_offset = offset(in, 4);
  expect_forms_agree(forms.scale_horz, "scale_horz", 4 * dst_span.pixels, dst_offset,
                     bytes(in, 4 * dst_span.pixels), [&](const auto& fn, std::uint8_t* dst) {
                       fn(reinterpret_cast<std::uint32_t*>(dst) + dst_span.first, dst_width,
                          dst_stride, src.as<std::uint32_t>() + src_span.first, src_width, height,
                          src_stride);
                     });
}

// The zoom-in functions need 16-byte aligned lines and read at least 16 bytes of each row.
void fuzz_zoom_in2x1d(Input& in, const ScaleForms& forms) {
  const std::int32_t n = count(in, 700);
  const std::size_t groups = n >= 4 ? static_cast<std::size_t>(n / 4) : 0;
  const Buffer src(16 * std::max<std::size_t>(groups, 1), 0);
  src.assign(bytes(in, src.size()));
  expect_forms_agree(forms.zoom_in2x1d, "zoom_in2x1d", 32 * groups, 0, bytes(in, 32 * groups),
                     [&](const auto& fn, std::uint8_t* dst) {
                       fn(reinterpret_cast<std::uint32_t*>(dst), src.as<std::uint32_t>(), n);
                     });
}

void fuzz_zoom_in2x2d(Input& in, const ScaleForms& forms) {
  const std::int32_t width = 2 * in.ConsumeIntegralInRange(-1, 100);  // even: rows stay aligned
  const std::int32_t height = in.ConsumeIntegralInRange(-2, 8);
  const std::int32_t stride = 4 * in.ConsumeIntegralInRange(-60, 60);
  const std::int32_t row = std::max(4, width / 4 * 4);  // pixels read per source row
  const Span src_span = rows_span(width >= 0 ? height : 0, row, stride);
  const Buffer src(4 * src_span.pixels, 0);
  src.assign(bytes(in, src.size()));
  // 2 * height rows of 2 * width pixels; two rows also when height <= 0 (row 0 is copied to 1).
  const std::size_t dst_px = width > 0 ? 4 * std::size_t(width) * std::max(height, 1) : 0;
  expect_forms_agree(forms.zoom_in2x2d, "zoom_in2x2d", 4 * dst_px, 0, bytes(in, 4 * dst_px),
                     [&](const auto& fn, std::uint8_t* dst) {
                       fn(reinterpret_cast<std::uint32_t*>(dst),
                          src.as<std::uint32_t>() + src_span.first, width, height, stride);
                     });
}

void fuzz_zoom_outNx(Input& in, const ScaleForms& forms) {
  const std::int32_t dst_width = in.ConsumeIntegralInRange(-2, 48);
  const std::int32_t dst_height = in.ConsumeIntegralInRange(-2, 48);
  const std::int32_t src_width = in.ConsumeIntegralInRange(-2, 200);
  const std::int32_t src_height = in.ConsumeIntegralInRange(-2, 200);
  std::size_t src_px = 0, dst_px = 0;
  if (dst_width > 0 && dst_height > 0 && src_width > 0 && src_height > 0) {
    // Up to the last sample of the rounded-up factors, which may lie past the picture.
    const std::size_t fx = (src_width + dst_width - 1) / dst_width;
    const std::size_t fy = (src_height + dst_height - 1) / dst_height;
    src_px = (dst_height - 1) * fy * src_width + (dst_width - 1) * fx + 1;
    dst_px = std::size_t(dst_width) * dst_height;
  }
  const Buffer src(4 * src_px, offset(in, 4));
  src.assign(bytes(in, src.size()));
  const std::size_t dst_offset = offset(in, 4);
  expect_forms_agree(forms.zoom_outNx, "zoom_outNx", 4 * dst_px, dst_offset, bytes(in, 4 * dst_px),
                     [&](const auto& fn, std::uint8_t* dst) {
                       fn(reinterpret_cast<std::uint32_t*>(dst), dst_width, dst_height,
                          src.as<std::uint32_t>(), src_width, src_height);
                     });
}

}  // namespace
}  // namespace qx::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qx::fuzz;
  static const ScaleForms& forms = scale_forms();
  Input in(data, size);
  switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
      fuzz_scale_1d(in, forms);
      break;
    case 1:
      fuzz_scale_horz(in, forms);
      break;
    case 2:
      fuzz_zoom_in2x1d(in, forms);
      break;
    case 3:
      fuzz_zoom_in2x2d(in, forms);
      break;
    default:
      fuzz_zoom_outNx(in, forms);
      break;
  }
  return 0;
}
