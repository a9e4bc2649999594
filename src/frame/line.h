// The line-loop frame shared by every line kernel, in a scalar and a vector version.
//
// A kernel supplies only its per-pixel (scalar) or per-vector (vector) arithmetic; the frame owns
// everything about walking the line:
//   - count / kGroup whole groups (signed division: count <= 0 runs none), then the tail of the
//     remaining count % kGroup pixels through the same arithmetic, writing exactly those pixels;
//   - the tail reads only the pixels of the line, never past pixel count - 1;
//   - mask lines are read a whole group of kGroup bytes at a time, also in the tail, so a mask must
//     be readable up to the next multiple of kGroup pixels; count <= 0 reads no input at all;
//   - every input of a group is read before its output is stored, so dst may be the very same
//     pointer as any input line;
//   - the blend families' tail pairing (TailPairing::kLastFg): when count % kGroup == 2, the first
//     of the two tail pixels takes its second input (the foreground) from the last pixel too; the
//     foreground pixel before it is not read.
// Pointers need no alignment: one loop with unaligned accesses serves every case.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/pixel.h"
#include "frame/unit.h"

namespace qx {
inline namespace QX_UNIT_NS {

enum class TailPairing : std::uint8_t {
  kOwn,     // every pixel is computed from its own input pixels
  kLastFg,  // count % kGroup == 2: both tail pixels use the last pixel of the second input
};

// What a kernel reads per pixel: 0 to 2 pixel lines and optionally one mask byte.
template <int kInputs_, bool kMask_, TailPairing kPairing_ = TailPairing::kOwn>
struct Shape {
  static constexpr int kInputs = kInputs_;
  static constexpr bool kMask = kMask_;
  static constexpr TailPairing kPairing = kPairing_;
  static_assert(kInputs >= 0 && kInputs <= 2, "at most two pixel inputs");
  static_assert(kPairing == TailPairing::kOwn || kInputs == 2, "pairing needs a second input");
};

// The buffers of one call. Unused inputs are null.
struct Lines {
  std::uint32_t* dst;
  const std::uint32_t* in0;  // first pixel input (bg, src, src1)
  const std::uint32_t* in1;  // second pixel input (fg, src2)
  const std::uint8_t* mask;
  std::int32_t count;
};

namespace frame_detail {

// Calls fn with the arguments the shape provides: (in0?, in1?, mask?).
template <class S, class Fn, class P, class M>
inline auto apply(Fn& fn, const P& a, const P& b, const M& m) {
  if constexpr (S::kInputs == 0 && !S::kMask)
    return fn();
  else if constexpr (S::kInputs == 0)
    return fn(m);
  else if constexpr (S::kInputs == 1 && !S::kMask)
    return fn(a);
  else if constexpr (S::kInputs == 1)
    return fn(a, m);
  else if constexpr (!S::kMask)
    return fn(a, b);
  else
    return fn(a, b, m);
}

// The index of the second input that pixel i of an n-pixel line uses.
template <class S>
constexpr std::int32_t in1_index(std::int32_t i, std::int32_t n) noexcept {
  if constexpr (S::kPairing == TailPairing::kLastFg)
    return (n % kGroup == 2 && i == n - 2) ? n - 1 : i;
  else
    return i;
}

}  // namespace frame_detail

// Scalar frame: px(in0?, in1?, mask?) -> output pixel, for each pixel in order. Pixel i reads
// in0[i], in1[i] (or in1[i + 1] in the paired tail) and mask[i], and writes dst[i] after them, so
// in-place use is safe.
template <class S, class PxFn>
inline void scalar_line(const Lines& l, PxFn&& px) {
  const std::int32_t n = l.count;
  for (std::int32_t i = 0; i < n; ++i) {
    const std::uint32_t a = S::kInputs > 0 ? load_px(l.in0 + i) : 0u;
    const std::uint32_t b = S::kInputs > 1 ? load_px(l.in1 + frame_detail::in1_index<S>(i, n)) : 0u;
    const std::uint8_t m = S::kMask ? l.mask[i] : std::uint8_t{0};
    store_px(l.dst + i, frame_detail::apply<S>(px, a, b, m));
  }
}

// Vector frame over V (see simd/): grp(in0?, in1?, mask?) -> V::Px, where the pixel inputs are
// V::Px vectors of V::kPixels pixels and mask points at V::kPixels mask bytes.
// Whole groups go through full vectors; what is left (fewer than V::kPixels pixels: the whole
// groups that do not fill a vector, then the count % kGroup tail) goes through one more vector
// gathered from the line into zeroed scratch, so the tail uses exactly the body's arithmetic.
template <class V, class S, class GroupFn>
inline void vector_line(const Lines& l, GroupFn&& grp) {
  constexpr std::int32_t W = V::kPixels;
  static_assert(W % kGroup == 0, "a vector holds whole groups");
  const std::int32_t n = l.count;
  const std::int32_t whole = n / kGroup * kGroup;  // pixels in whole groups; <= 0 if n < kGroup
  const std::int32_t vectors = whole > 0 ? whole / W : 0;

  std::int32_t i = 0;
  for (std::int32_t k = 0; k < vectors; ++k, i += W) {
    const auto a = S::kInputs > 0 ? V::load(l.in0 + i) : V::zero();
    const auto b = S::kInputs > 1 ? V::load(l.in1 + i) : V::zero();
    V::store(l.dst + i, frame_detail::apply<S>(grp, a, b, S::kMask ? l.mask + i : nullptr));
  }

  const std::int32_t rest = n - i;  // 0 <= rest < W when n > 0
  if (rest > 0) {
    alignas(64) std::uint32_t a[W] = {};
    alignas(64) std::uint32_t b[W] = {};
    alignas(64) std::uint32_t out[W];
    alignas(64) std::uint8_t m[W] = {};
    if constexpr (S::kInputs > 0) std::memcpy(a, l.in0 + i, sizeof(std::uint32_t) * rest);
    if constexpr (S::kInputs > 1) {
      if (S::kPairing == TailPairing::kLastFg && n % kGroup == 2) {
        std::memcpy(b, l.in1 + i, sizeof(std::uint32_t) * (rest - 2));
        b[rest - 2] = b[rest - 1] = load_px(l.in1 + n - 1);
      } else {
        std::memcpy(b, l.in1 + i, sizeof(std::uint32_t) * rest);
      }
    }
    if constexpr (S::kMask) {
      const std::int32_t groups = (rest + kGroup - 1) / kGroup;
      std::memcpy(m, l.mask + i, static_cast<std::size_t>(groups * kGroup));
    }
    V::store(out, frame_detail::apply<S>(grp, V::load(a), V::load(b), +m));
    std::memcpy(l.dst + i, out, sizeof(std::uint32_t) * rest);
  }
}

}  // namespace QX_UNIT_NS
}  // namespace qx
