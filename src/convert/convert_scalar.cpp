// The conversions written per pixel, the reference every other form must match.
#include "convert/convert.h"
#include "frame/line.h"

namespace qx::scalar {
namespace {

using namespace yuv;

std::uint32_t clamp255(std::int32_t v) { return v < 0 ? 0u : v > 255 ? 255u : std::uint32_t(v); }

// floor(v * c / 512): each product is floored on its own before it joins a sum.
std::int32_t t(std::int32_t v, std::int32_t c) { return (v * c) >> 9; }

std::uint32_t argb2ayuv_px(std::uint32_t px) {
  const std::int32_t b = std::int32_t(chan(px, 0)), g = std::int32_t(chan(px, 1)),
                     r = std::int32_t(chan(px, 2));
  const std::int32_t u = (t(r, kUFromR) + t(g, kUFromG) + t(b, kUFromB)) >> 4;
  const std::int32_t y = (t(r, kYFromR) + t(g, kYFromG) + t(b, kYFromB)) >> 4;
  const std::int32_t v = (t(r, kVFromR) + t(g, kVFromG) + t(b, kVFromB)) >> 4;
  return make_px(clamp255(u + kUOffset), clamp255(y + kYOffset), clamp255(v + kVOffset),
                 chan(px, 3));
}

std::uint32_t ayuv2argb_px(std::uint32_t px) {
  const std::int32_t u = std::int32_t(chan(px, 0)) - kUOffset;
  const std::int32_t y = std::int32_t(chan(px, 1)) - kYOffset;
  const std::int32_t v = std::int32_t(chan(px, 2)) - kVOffset;
  const std::int32_t b = (kBFromU * u + kFromY * y) >> 13;
  const std::int32_t r = (kRFromV * v + kFromY * y) >> 13;
  // Green is two separately floored parts; flooring their sum instead would differ by one step.
  const std::int32_t g = ((kGFromU * u + kFromY * y) >> 13) + ((kGFromV * v) >> 13);
  return make_px(clamp255(b), clamp255(g), clamp255(r), chan(px, 3));
}

}  // namespace

void argb2ayuv(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  scalar_line<Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count}, argb2ayuv_px);
}

void ayuv2argb(std::uint32_t* dst, const std::uint32_t* src, std::int32_t count) {
  scalar_line<Shape<1, false>>(Lines{dst, src, nullptr, nullptr, count}, ayuv2argb_px);
}

void v210yuv422p10(std::uint16_t* dst, const std::uint32_t* src, std::int32_t count) {
  if (count <= 0 || count % 2 != 0) return;
  const std::size_t pairs = static_cast<std::size_t>(count) / 2;
  v210_pairs(dst, dst + 2 * pairs, dst + 3 * pairs, src, 0, pairs);
}

}  // namespace qx::scalar
