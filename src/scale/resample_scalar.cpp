#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "frame/pixel.h"
#include "scale/resample.h"

namespace qx {

void scale_step_table(std::int32_t* table, std::int32_t start, std::int32_t src_count,
                      std::int32_t dst_count) {
  // (src_count - 1) * 256 in wrapping 32-bit arithmetic: src_count * 256 alone overflows for the
  // largest source (2^23 pixels), while the position itself still fits.
  const auto end = static_cast<std::int32_t>((static_cast<std::uint32_t>(src_count) - 1u) * 256u);
  const bool mirrored = end < start;
  const std::int32_t distance = mirrored ? start - end : end - start;
  std::int32_t step = (distance - 1) / (dst_count - 1);
  if (mirrored) step = -step;
  // table[j] = table[j - 1] + step, written as start + j * step in wrapping unsigned arithmetic:
  // the same 32-bit values, without the serial dependency (the loop vectorizes).
  table[0] = start;
  for (std::int32_t j = 1; j < dst_count - 1; ++j)
    table[j] =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(start) +
                                  static_cast<std::uint32_t>(j) * static_cast<std::uint32_t>(step));
  table[dst_count - 1] = end - 1;
}

namespace {

// The position table: 16-byte aligned so the vector forms read each group's four positions with
// one aligned load; made and released within one call, never cached.
struct TableFree {
  void operator()(std::int32_t* p) const noexcept { ::operator delete[](p, std::align_val_t{16}); }
};
using Table = std::unique_ptr<std::int32_t[], TableFree>;

// Null when the table cannot be had (its size does not fit size_t, or memory is short): the
// caller then writes nothing rather than fault or throw through the C interface.
Table make_table(std::int32_t entries) {
  const auto n = static_cast<std::size_t>(entries);
  if (n > SIZE_MAX / sizeof(std::int32_t)) return nullptr;
  void* p = ::operator new[](n * sizeof(std::int32_t), std::align_val_t{16}, std::nothrow);
  return Table(static_cast<std::int32_t*>(p));
}

}  // namespace

void scale_horz(ScaleLineFn* line, std::uint32_t* dst, std::int32_t dst_width,
                std::int32_t dst_stride, const std::uint32_t* src, std::int32_t src_width,
                std::int32_t height, std::int32_t src_stride) {
  if (dst_width < 2 || src_width < 2 || src_width > kMaxScaleSrc) return;
  const Table table = make_table(dst_width);
  if (!table) return;
  scale_step_table(table.get(), 0, src_width, dst_width);
  for (std::int32_t y = 0; y < height; ++y)
    line(dst + std::ptrdiff_t{y} * dst_stride, src + std::ptrdiff_t{y} * src_stride, dst_width,
         table.get());
}

void scale_1d(ScaleLineFn* line, std::uint32_t* dst, std::int32_t dst_count,
              const std::uint32_t* src, std::int32_t src_count) {
  scale_horz(line, dst, dst_count, 0, src, src_count, 1, 0);
}

namespace scalar {

void zoom_out(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_height,
              const std::uint32_t* src, std::int32_t src_width, std::int32_t src_height) {
  if (dst_width <= 0 || dst_height <= 0 || src_width <= 0 || src_height <= 0) return;
  const std::ptrdiff_t fx = src_width / dst_width + (src_width % dst_width != 0);
  const std::ptrdiff_t fy = src_height / dst_height + (src_height % dst_height != 0);
  for (std::int32_t r = 0; r < dst_height; ++r) {
    const std::uint32_t* s = src + r * fy * src_width;
    std::uint32_t* d = dst + std::ptrdiff_t{r} * dst_width;
    for (std::int32_t c = 0; c < dst_width; ++c) d[c] = s[c * fx];
  }
}

namespace {
std::uint32_t mix(std::uint32_t left, std::uint32_t right, std::uint32_t f) {
  std::uint32_t out = 0;
  for (int k = 0; k < 4; ++k)
    out |= ((chan(left, k) * (256 - f) >> 8) + (chan(right, k) * f >> 8)) << (8 * k);
  return out;
}
}  // namespace

void scale_line_interp(std::uint32_t* dst, const std::uint32_t* src, std::int32_t dst_count,
                       const std::int32_t* table) {
  const auto px = [src](std::uint32_t i) { return load_px(src + i); };
  const std::int32_t groups = dst_count / 4;
  for (std::int32_t g = 0; g < groups; ++g) {
    const std::ptrdiff_t j = std::ptrdiff_t{g} * 4;
    std::uint32_t i[4], f[4];
    for (int n = 0; n < 4; ++n) {
      i[n] = static_cast<std::uint32_t>(table[j + n]) >> 8;
      f[n] = static_cast<std::uint32_t>(table[j + n]) & 255u;
    }
    store_px(dst + j + 0, mix(px(i[0]), px(i[0] + 1), f[0]));
    store_px(dst + j + 1, mix(px(i[0] + 1), px(i[1] + 1), f[1]));
    store_px(dst + j + 2, mix(px(i[2]), px(i[2] + 1), f[2]));
    store_px(dst + j + 3, mix(px(i[2] + 1), px(i[3] + 1), f[3]));
  }
}

}  // namespace scalar
}  // namespace qx
