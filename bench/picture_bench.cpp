// The kernels outside the line catalogue (v210 unpacking, zoom, scaling, zoom-out), every form, in
// line and frame mode. Pixels are output pixels; the memcpy row writes the same output bytes.
#include "bench.h"
#include "convert/convert.h"
#include "scale/linzoom.h"
#include "scale/resample.h"

namespace qxbench {
namespace {

constexpr int kV210Words = kWidth / 6 * 4;  // 32-bit words of one 1920-pixel v210 line

std::string frame_size(Mode mode, int height = kHeight) {
  return mode == Mode::kLine ? "1920" : "1920x" + std::to_string(height);
}

void add_scale_1d_forms(const Row& row, int dst_w) {
  const int rows = rows_of(row.mode);
  add_forms(row, qx::scale_1d_forms, [dst_w, rows](qx::Scale1dFn* fn) {
    const Buffers& b = buffers();
    for (int y = 0; y < rows; ++y)
      fn(b.dst + std::size_t{1} * dst_w * y, dst_w, b.a + std::size_t{kWidth} * y, kWidth);
  });
}
void add_scale_horz_forms(const Row& row, int dst_w) {
  const int rows = rows_of(row.mode);
  add_forms(row, qx::scale_horz_forms, [dst_w, rows](qx::ScaleHorzFn* fn) {
    fn(buffers().dst, dst_w, dst_w, buffers().a, kWidth, rows, kWidth);
  });
}

void add_mode(Mode mode) {
  const int rows = rows_of(mode);
  {  // v210: 1920 pixels from 5120 bytes into three 16-bit planes, 4 bytes per pixel
    const Row row{"v210yuv422p10", "", mode, frame_size(mode), double{kWidth} * rows};
    add_memcpy(row, std::size_t{4} * kWidth);
    add_forms(row, qx::v210yuv422p10_forms, [rows](qx::V210Fn* fn) {
      const Buffers& b = buffers();
      auto* dst = reinterpret_cast<std::uint16_t*>(b.dst);
      for (int y = 0; y < rows; ++y)
        fn(dst + std::size_t{2} * kWidth * y, b.a + std::size_t{kV210Words} * y, kWidth);
    });
  }
  {  // zoom_in2x1d: each 1920-pixel row doubled to 3840
    const Row row{"zoom_in2x1d", "", mode, frame_size(mode), 2.0 * kWidth * rows};
    add_memcpy(row, std::size_t{8} * kWidth);
    add_forms(row, qx::zoom_in2x1d_forms, [rows](qx::ZoomIn1dFn* fn) {
      const Buffers& b = buffers();
      for (int y = 0; y < rows; ++y)
        fn(b.dst + std::size_t{2} * kWidth * y, b.a + std::size_t{kWidth} * y, kWidth);
    });
  }
  {  // zoom_in2x2d: a picture doubled both ways. In line mode the picture is two rows high, the
     // smallest that averages rows.
    const int height = mode == Mode::kLine ? 2 : kHeight;
    const Row row{"zoom_in2x2d", "", mode, "1920x" + std::to_string(height), 4.0 * kWidth * height};
    add_memcpy(row, std::size_t{8} * kWidth, 2 * height);
    add_forms(row, qx::zoom_in2x2d_forms, [height](qx::ZoomIn2dFn* fn) {
      fn(buffers().dst, buffers().a, kWidth, height, kWidth);
    });
  }
  for (const auto& [variant, dst_w] : {std::pair{"x2/3", 1280}, std::pair{"x2", 3840}}) {
    const std::string to =
        mode == Mode::kLine ? "to" + std::to_string(dst_w) : "to" + std::to_string(dst_w) + "x1080";
    const Row row1{"scale_1d", variant, mode, frame_size(mode) + to, double{1} * dst_w * rows};
    add_memcpy(row1, std::size_t{4} * dst_w);
    add_scale_1d_forms(row1, dst_w);
    Row row2 = row1;
    row2.kernel = "scale_horz";
    add_memcpy(row2, std::size_t{4} * dst_w);
    add_scale_horz_forms(row2, dst_w);
  }
  {  // zoom_outNx by 2 both ways: a 1920x2 source to one 960-pixel line, 1920x1080 to 960x540
    const int dst_h = mode == Mode::kLine ? 1 : kHeight / 2;
    const Row row{"zoom_outNx", "", mode,
                  "1920x" + std::to_string(2 * dst_h) + "to960x" + std::to_string(dst_h),
                  960.0 * dst_h};
    add_memcpy(row, std::size_t{4} * 960, dst_h);
    add_forms(row, qx::zoom_out_forms, [dst_h](qx::ZoomOutFn* fn) {
      fn(buffers().dst, 960, dst_h, buffers().a, kWidth, 2 * dst_h);
    });
  }
}

}  // namespace

void add_picture_kernels() {
  add_mode(Mode::kLine);
  add_mode(Mode::kFrame);
}

}  // namespace qxbench
