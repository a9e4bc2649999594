// The line-loop frame shared by every line kernel, in a scalar and a vector version.
//
// A kernel supplies only its per-pixel (scalar) or per-vector (vector) arithmetic; the frame owns
// everything about walking the line:
//   - count / kGroup whole groups (signed division: count <= 0 runs none), then the tail of the
//     remaining count % kGroup pixels through the same arithmetic, writing exactly those pixels;
//   - the tail reads only the pixels of the line, never past pixel count - 1;
//   - count <= 0 reads and writes nothing at all;
//   - a mask is read only at the line's pixels (callers must still make it readable up to the next
//     whole group of kGroup pixels, as the contract has always asked);
//   - every input of a group is read before its output is stored, so dst may be the very same
//     pointer as any input line;
//   - the blend families' tail pairing (TailPairing::kLastFg): when count % kGroup == 2, the first
//     of the two tail pixels takes its second input (the foreground) from the last pixel too; the
//     foreground pixel before it is not read.
// Pointers need no alignment: one loop with unaligned accesses serves every case.
#pragma once

#include <cstdint>
#include <type_traits>

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

// Keeps a vector just loaded in a register. Compilers otherwise fold its load into each
// instruction that uses it, loading the same bytes once per use, and on some processors a load of
// a whole 64-byte vector takes a cycle of load bandwidth of its own.
template <class Px>
inline void in_register(Px& v) noexcept {
#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
  asm("" : "+x"(v));
#else
  static_cast<void>(v);
#endif
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

// No mapping of mask bytes: vector_line reads the mask as it is.
struct SameMask {};

// Vector frame over V (see simd/): grp(in0?, in1?, mask?) -> V::Px, where the pixel inputs are
// V::Px vectors of V::kPixels pixels and the mask is their V::kPixels bytes as V::Bytes.
// Whole vectors go through full loads and stores. What does not fill one goes through the same
// arithmetic on a partial vector that reads and writes only its pixels (V::load_n / V::store_n):
//   - a head, when the line is long enough, that brings dst to a multiple of V::kStoreAlign bytes,
//     so that no store of the body splits a cache line;
//   - the tail, the last one or two partial vectors; with the tail pairing, the vector holding
//     pixel count - 2 takes the last pixel of in1 in that lane (in1[count - 2] is not read).
// With a mask map, map(in, out, n) maps n mask bytes into a buffer of the frame's, a chunk of
// whole vectors at a time, and the groups see the mapped bytes.
template <class V, class S, class GroupFn, class MaskMap = SameMask>
inline void vector_line(const Lines& l, GroupFn&& grp, MaskMap&& map = {}) {
  using Px = typename V::Px;
  using Bytes = typename V::Bytes;
  constexpr std::int32_t W = V::kPixels;
  static_assert(W % kGroup == 0, "a vector holds whole groups");
  static_assert(V::kStoreAlign <= sizeof(std::uint32_t) * W, "a head is less than a vector");
  constexpr bool kMapped = !std::is_same_v<std::remove_cvref_t<MaskMap>, SameMask>;
  constexpr std::int32_t kChunk = kMapped ? 32 * W : 0;  // pixels mapped at a time
  const std::int32_t n = l.count;
  if (n <= 0) return;

  alignas(64) std::uint8_t mapped[kMapped ? kChunk : 1];
  // The mask bytes of pixels [i, i + len), mapped if the kernel maps them.
  const auto mask_at = [&](std::int32_t i, std::int32_t len) {
    if constexpr (kMapped) {
      map(l.mask + i, mapped, len);
      return static_cast<const std::uint8_t*>(mapped);
    } else {
      static_cast<void>(len);
      return l.mask + i;
    }
  };
  const auto whole = [&](std::int32_t i, const std::uint8_t* mask) {
    Px a = V::zero(), b = V::zero();
    Bytes m = V::zero();
    if constexpr (S::kInputs > 0) {
      a = V::load(l.in0 + i);
      frame_detail::in_register(a);
    }
    if constexpr (S::kInputs > 1) {
      b = V::load(l.in1 + i);
      frame_detail::in_register(b);
    }
    if constexpr (S::kMask) m = V::load_bytes(mask);
    V::store(l.dst + i, frame_detail::apply<S>(grp, a, b, m));
  };
  const bool paired = S::kPairing == TailPairing::kLastFg && n % kGroup == 2;
  const auto part = [&](std::int32_t i, std::int32_t len) {  // pixels [i, i + len), len <= W
    Px a = V::zero(), b = V::zero();
    Bytes m = V::zero();
    if constexpr (S::kInputs > 0) a = V::load_n(l.in0 + i, len, 0);
    if constexpr (S::kInputs > 1) {
      const std::int32_t lane = n - 2 - i;  // of pixel n - 2
      if (paired && lane >= 0 && lane < len)
        b = V::load_n(l.in1 + i, lane, load_px(l.in1 + n - 1));
      else
        b = V::load_n(l.in1 + i, len, 0);
    }
    if constexpr (S::kMask) m = V::load_bytes_n(mask_at(i, len), len);
    V::store_n(l.dst + i, frame_detail::apply<S>(grp, a, b, m), len);
  };

  std::int32_t i = 0;
  if constexpr (V::kStoreAlign > sizeof(std::uint32_t)) {
    const std::uintptr_t off = reinterpret_cast<std::uintptr_t>(l.dst) % V::kStoreAlign;
    if (n >= 2 * W && off % sizeof(std::uint32_t) == 0 && off != 0) {
      i = static_cast<std::int32_t>((V::kStoreAlign - off) / sizeof(std::uint32_t));
      part(0, i);  // i < W <= n - 2: never pixel n - 2
    }
  }
  const std::int32_t end = paired ? n - 2 : n;
  if constexpr (kMapped) {
    while (i + W <= end) {
      const std::int32_t len = end - i < kChunk ? (end - i) / W * W : kChunk;
      const std::uint8_t* m = mask_at(i, len);
      for (std::int32_t k = 0; k < len; k += W) whole(i + k, m + k);
      i += len;
    }
  } else {
    for (; i + W <= end; i += W) whole(i, S::kMask ? l.mask + i : nullptr);
  }
  for (; i < n; i += W) part(i, n - i < W ? n - i : W);
}

}  // namespace QX_UNIT_NS
}  // namespace qx
