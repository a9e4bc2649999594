// The linear scalers and the zoom-out over the vector policy V: a vector of outputs at a time,
// positions kept in a vector and advanced as the row is walked (nothing is allocated).
//
// The taps of a vector of outputs come either from a window of 2 * V::kPixels source pixels,
// loaded whole and permuted (when the policy permutes pixels across two vectors and the taps fit),
// or from gathering the pairs of adjacent pixels that the tap pairing reads (scale/resample.h):
// lanes 2m and 2m + 1 of the pairs gathered at the even outputs' indices are exactly the left taps
// of outputs 2m and 2m + 1, and the right tap of output 2m + 1 is the second pixel of the pair at
// its own index.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/pixel.h"
#include "scale/resample.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {
namespace {

using Px = V::Px;
constexpr std::int32_t P = V::kPixels;

template <class W>
concept PixelPermute = requires(typename W::Px x) {
  W::permute_px(x, x);
  W::permute_px2(x, x, x);
};

// Per byte left * (256 - f) / 256 + right * f / 256 with f = pos & 255 of each output, each
// product (byte * 256) * weight >> 16 truncated on its own; the sum stays <= 255.
Px mix(Px left, Px right, Px pos) {
  Px f_lo, f_hi;
  V::spread_byte0(pos, f_lo, f_hi);
  const Px whole = V::set16(256);
  const Px lo = V::add16(V::mulhi_u16(V::widen_lo(left), V::sub16(whole, f_lo)),
                         V::mulhi_u16(V::widen_lo(right), f_lo));
  const Px hi = V::add16(V::mulhi_u16(V::widen_hi(left), V::sub16(whole, f_hi)),
                         V::mulhi_u16(V::widen_hi(right), f_hi));
  return V::pack(lo, hi);
}

// The outputs at positions pos, taps gathered from src.
Px gathered(const std::uint32_t* src, Px pos) {
  const Px i = V::srl32(pos, 8);
  Px at_even, at_odd;  // P[i_2m], P[i_2m + 1] and P[i_2m+1], P[i_2m+1 + 1]
  V::gather_px_pairs(src, i, at_even, at_odd);
  return mix(at_even, V::trn_odd_px(at_even, at_odd), pos);
}

// The outputs at positions rel relative to `window` (rel = pos - 256 * first index of the window),
// all of whose taps lie among the P (kNarrow) or 2 * P pixels at `window`.
// (A template, so that it is only built for policies with pixel permutes.)
template <class W, bool kNarrow>
Px windowed(const std::uint32_t* window, Px rel) {
  const Px i = W::srl32(rel, 8);
  const Px left_i = W::add32(W::dup_even32(i), W::set16x4(0, 0, 1, 0));  // + 0, 1, 0, 1, ...
  const Px right_i = W::add32(i, W::set_px(1));
  const Px w0 = W::load(window);
  if constexpr (kNarrow)
    return mix(W::permute_px(w0, left_i), W::permute_px(w0, right_i),
               rel);  // rel & 255 == pos & 255
  const Px w1 = W::load(window + P);
  return mix(W::permute_px2(w0, w1, left_i), W::permute_px2(w0, w1, right_i), rel);
}

// What every row of one call shares.
struct Plan {
  ScaleSteps s;
  std::int32_t regular;   // vectors of outputs whose positions are all j * step: [0, regular * P)
  std::int32_t windowed;  // the first of those whose taps come from a window inside the source
  bool narrow;            // that window is one vector wide (else two)
};

Plan plan(const ScaleSteps& s, std::int32_t src_count) {
  Plan p{s, (s.count - 1) / P, 0, false};
  if constexpr (PixelPermute<V>) {
    // Vector k (outputs kP .. kP + P - 1) reads the window at b = kP * step >> 8. Its taps lie in
    // a window of w pixels when its last left index is at most w - 2 past b (the right tap is one
    // further), which holds for every k when (P - 1) * step / 256 + 1 <= w - 2; the window lies
    // inside the source while b + w <= src_count, which holds for k up to a bound, positions
    // increasing.
    const std::uint64_t step = s.step, spread = (P - 1) * step / 256 + 1;
    const std::int32_t w = spread <= std::uint64_t{P - 2} ? P : 2 * P;  // the narrowest that fits
    p.narrow = w == P;
    if (spread <= std::uint64_t(w - 2) && src_count >= w) {
      const std::uint64_t room = std::uint64_t(src_count - w) * 256 + 255;
      const std::uint64_t fit = step == 0 ? std::uint64_t(p.regular) : room / (P * step) + 1;
      p.windowed = fit < std::uint64_t(p.regular) ? static_cast<std::int32_t>(fit) : p.regular;
    }
  }
  return p;
}

template <class W>
void scale_row(std::uint32_t* dst, const std::uint32_t* src,
               const Plan p) {  // (p by value: dst cannot alias it)
  alignas(64) std::uint32_t lanes[P];
  for (std::int32_t k = 0; k < P; ++k) lanes[k] = static_cast<std::uint32_t>(k) * p.s.step;
  Px pos = V::load(lanes);  // the positions of the current vector of outputs
  const std::uint32_t advance = static_cast<std::uint32_t>(P) * p.s.step;  // (wraps harmlessly)
  const Px advance_v = V::set_px(advance);
  std::int32_t k = 0;
  if constexpr (PixelPermute<W>) {
    const auto windows = [&](auto narrow) {
      std::uint32_t first = 0;  // position of the vector's first output
      for (; k < p.windowed; ++k, first += advance, pos = V::add32(pos, advance_v)) {
        const std::uint32_t base = first >> 8;
        V::store(dst + std::ptrdiff_t{k} * P,
                 windowed<W, narrow()>(src + base, V::sub32(pos, V::set_px(base << 8))));
      }
    };
    if (p.narrow)
      windows(std::true_type{});
    else
      windows(std::false_type{});
  }
  for (; k < p.regular; ++k, pos = V::add32(pos, advance_v))
    V::store(dst + std::ptrdiff_t{k} * P, gathered(src, pos));
  // The rest, at most P outputs (the pinned last position among them when count % 4 == 0), in
  // scratch; its unused lanes sample position 0.
  const std::int32_t j0 = p.regular * P, rest = p.s.count / 4 * 4 - j0;
  if (rest > 0) {
    for (std::int32_t n = 0; n < P; ++n) lanes[n] = n < rest ? p.s.at(j0 + n) : 0;
    alignas(64) std::uint32_t out[P];
    V::store(out, gathered(src, V::load(lanes)));
    std::memcpy(dst + j0, out, sizeof(std::uint32_t) * static_cast<std::size_t>(rest));
  }
}

// Asks for the cache line at p ahead of its use (a hint: nothing is read).
inline void prefetch(const void* p) {
#if defined(__GNUC__) || defined(__clang__)
  __builtin_prefetch(p);
#else
  static_cast<void>(p);
#endif
}

// One row of the zoom-out: d[c] = s[c * fx] for c < width. `next` is the next row's source, or
// null for the last row.
void zoom_row(std::uint32_t* d, const std::uint32_t* s, std::int32_t width, std::ptrdiff_t fx,
              Px offsets, const std::uint32_t* next) {
  if (fx == 1) {
    std::memmove(d, s, sizeof(std::uint32_t) * static_cast<std::size_t>(width));
    return;
  }
  const bool gathers = fx < (std::ptrdiff_t{1} << 26) / P;  // every offset k * fx in bytes fits
  std::int32_t c = 0;
  if (fx == 2) {
    // A vector reads 2P pixels from s + 2c, the last of which lies before sample c + P: stop
    // while there is one, so that nothing past the row's last sample is read.
    // The rows it reads are not adjacent, which the processor's own prefetching does not foresee:
    // ask for the next row's lines while this row is read.
    // After the first vector, start where the stores fall on vector boundaries (rewriting a few
    // pixels with the values they have) unless dst overlaps the source those pixels come from.
    const auto at = [=](std::int32_t c) {
      if (next != nullptr)
        for (std::int32_t line = 0; line < 2 * P; line += 16) prefetch(next + 2 * c + line);
      V::store(d + c, V::even_px(V::load(s + 2 * c), V::load(s + 2 * c + P)));
    };
    const std::int32_t end = width - P;
    if (c < end) {
      at(0);
      constexpr std::uintptr_t kBytes = 4 * P;
      const auto addr = [](const void* p) { return reinterpret_cast<std::uintptr_t>(p); };
      const std::uintptr_t past = addr(d) % kBytes;
      c = P;
      if (past != 0 && past % 4 == 0) {
        const auto aligned = static_cast<std::int32_t>((kBytes - past) / 4);
        if (addr(d + P) <= addr(s + 2 * aligned) || addr(s + 2 * std::ptrdiff_t{width}) <= addr(d))
          c = aligned;
      }
      for (; c < end; c += P) at(c);
    }
  } else if (gathers) {
    for (const std::int32_t end = width - P; c <= end; c += P)
      V::store(d + c, V::gather_px(s + c * fx, offsets));
  }
  if (c == width) return;
  if (fx == 2 && width > 2 * P) {
    // The rest as one more vector ending at the row's end, rewriting pixels with the values they
    // have: the odd pixels of the 2P pixels that end with the row's last sample. They lie at
    // s + 2 * (width - P) - 1 and on, past every pixel written so far even when dst is src
    // (d <= s, width > 2P).
    const std::uint32_t* w = s + 2 * (width - P) - 1;
    V::store(d + (width - P), V::odd_px(V::load(w), V::load(w + P)));
    return;
  }
  if (gathers && width >= 2 * P) {
    // The rest as one more vector ending at the row's end, rewriting pixels with the values they
    // have. Its samples lie at s + (width - P) * fx and on, past every pixel written so far even
    // when dst is src (d <= s, fx >= 2, width >= 2P).
    V::store(d + (width - P), V::gather_px(s + (width - P) * fx, offsets));
    return;
  }
  for (; c < width; ++c) store_px(d + c, load_px(s + c * fx));
}

}  // namespace

void scale_horz(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_stride,
                const std::uint32_t* src, std::int32_t src_width, std::int32_t height,
                std::int32_t src_stride) {
  scale_frame(dst, dst_width, dst_stride, src, src_width, height, src_stride,
              [src_width](const ScaleSteps& s) {
                return [p = plan(s, src_width)](std::uint32_t* d, const std::uint32_t* sr) {
                  scale_row<V>(d, sr, p);
                };
              });
}

void scale_1d(std::uint32_t* dst, std::int32_t dst_count, const std::uint32_t* src,
              std::int32_t src_count) {
  scale_horz(dst, dst_count, 0, src, src_count, 1, 0);
}

void zoom_out(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_height,
              const std::uint32_t* src, std::int32_t src_width, std::int32_t src_height) {
  zoom_out_frame(dst, dst_width, dst_height, src, src_width, src_height, [=](std::ptrdiff_t fx) {
    alignas(64) std::uint32_t lanes[P];
    for (std::int32_t k = 0; k < P; ++k)  // (used only when fx is small enough)
      lanes[k] = static_cast<std::uint32_t>(k) * static_cast<std::uint32_t>(fx);
    return [=, offsets = V::load(lanes)](std::uint32_t* d, const std::uint32_t* s,
                                         const std::uint32_t* next) {
      zoom_row(d, s, dst_width, fx, offsets, next);
    };
  });
}

}  // namespace qx::QX_SIMD
