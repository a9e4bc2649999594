// v210 unpacking with SSE2: whole groups of 48 pixels (eight 16-byte blocks) in vectors, the last
// partial group through the same code on a scratch copy.
#include <emmintrin.h>

#include <cstring>

#include "convert/convert.h"

namespace qx::sse2 {
namespace {

constexpr std::int32_t kGroupPixels = 48;  // eight blocks of six pixels
constexpr std::int32_t kBlockPixels = 6;

// 16-bit lanes k with first <= k <= last all ones.
__m128i lanes(int first, int last) {
  alignas(16) std::uint16_t m[8];
  for (int k = 0; k < 8; ++k) m[k] = (k >= first && k <= last) ? 0xFFFF : 0;
  return _mm_load_si128(reinterpret_cast<const __m128i*>(m));
}

struct Masks {
  __m128i ten = _mm_set1_epi32(0x3FF);          // a field at bit 0 of each word
  __m128i ten_hi = _mm_set1_epi32(0x03FF0000);  // a field at bit 16 of each word
  __m128i l01 = lanes(0, 1), l12 = lanes(1, 2), l25 = _mm_or_si128(lanes(2, 2), lanes(5, 5));
  __m128i l03 = _mm_or_si128(lanes(0, 0), lanes(3, 3)), l34 = lanes(3, 4), l45 = lanes(4, 5);
  __m128i low16 = _mm_set1_epi32(0xFFFF);
};

// One block, words w0..w3 each holding fields s0, s1, s2 (bits 0, 10, 20). As 16-bit lanes:
//   x = (s0, s2) of each word: Cb0 Cr0 | Y1 Y2 | Cr1 Cb2 | Y4 Y5
//   m = (s1, 0) of each word:  Y0 -   | Cb1 - | Y3 -    | Cr2 -
// Gathered into y = Y0..Y5 and c = Cb0 Cr0 Cb1 Cr1 Cb2 Cr2 in lanes 0..5, lanes 6 and 7 zero.
inline void block(__m128i w, const Masks& k, __m128i& y, __m128i& c) {
  const __m128i m = _mm_and_si128(_mm_srli_epi32(w, 10), k.ten);
  const __m128i x =
      _mm_or_si128(_mm_and_si128(w, k.ten), _mm_and_si128(_mm_srli_epi16(w, 4), k.ten_hi));
  const __m128i x1 = _mm_srli_si128(x, 2);                   // lane i holds x lane i + 1
  const __m128i x2 = _mm_srli_si128(x, 4);                   // lane i holds x lane i + 2
  const __m128i mm = _mm_or_si128(m, _mm_srli_si128(m, 2));  // m's fields in even and odd lanes
  y = _mm_or_si128(_mm_or_si128(_mm_and_si128(mm, k.l03), _mm_and_si128(x1, k.l12)),
                   _mm_and_si128(x2, k.l45));
  c = _mm_or_si128(_mm_or_si128(_mm_and_si128(x, k.l01), _mm_and_si128(mm, k.l25)),
                   _mm_and_si128(x1, k.l34));
}

// Four blocks of six samples (lanes 0..5) joined into three vectors of eight.
inline void join(const __m128i (&b)[4], __m128i* out) {
  out[0] = _mm_or_si128(b[0], _mm_slli_si128(b[1], 12));
  out[1] = _mm_or_si128(_mm_srli_si128(b[1], 4), _mm_slli_si128(b[2], 8));
  out[2] = _mm_or_si128(_mm_srli_si128(b[2], 8), _mm_slli_si128(b[3], 4));
}

// 48 pixels: 128 bytes of v210 at src to 48 Y samples at y, 24 Cb at cb and 24 Cr at cr.
inline void group(const std::uint32_t* src, std::uint16_t* y, std::uint16_t* cb, std::uint16_t* cr,
                  const Masks& k) {
  __m128i ys[2][4], cs[2][4];
  for (int h = 0; h < 2; ++h)
    for (int i = 0; i < 4; ++i)
      block(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 4 * (4 * h + i))), k, ys[h][i],
            cs[h][i]);
  __m128i yv[6], cv[6];
  join(ys[0], yv);
  join(ys[1], yv + 3);
  join(cs[0], cv);
  join(cs[1], cv + 3);
  for (int i = 0; i < 6; ++i) _mm_storeu_si128(reinterpret_cast<__m128i*>(y + 8 * i), yv[i]);
  // cv holds Cb, Cr pairs in 32-bit lanes; every sample fits 10 bits, so the signed packs are
  // exact.
  for (int i = 0; i < 3; ++i) {
    const __m128i lo = cv[2 * i], hi = cv[2 * i + 1];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cb + 8 * i),
                     _mm_packs_epi32(_mm_and_si128(lo, k.low16), _mm_and_si128(hi, k.low16)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cr + 8 * i),
                     _mm_packs_epi32(_mm_srli_epi32(lo, 16), _mm_srli_epi32(hi, 16)));
  }
}

}  // namespace

void v210yuv422p10(std::uint16_t* dst, const std::uint32_t* src, std::int32_t count) {
  if (count <= 0 || count % 2 != 0) return;
  const Masks k;
  const std::size_t n = static_cast<std::size_t>(count);
  std::uint16_t* y = dst;
  std::uint16_t* cb = dst + n;
  std::uint16_t* cr = cb + n / 2;
  const std::size_t groups = n / kGroupPixels;
  for (std::size_t g = 0; g < groups; ++g) {
    group(src, y, cb, cr, k);
    src += 32;
    y += kGroupPixels;
    cb += kGroupPixels / 2;
    cr += kGroupPixels / 2;
  }
  // The rest of the line: only the blocks that hold its pixels are read, only its samples written.
  const std::size_t rest = n % kGroupPixels;
  if (rest == 0) return;
  const std::size_t blocks = (rest + kBlockPixels - 1) / kBlockPixels;
  alignas(16) std::uint32_t in[32] = {};
  alignas(16) std::uint16_t out[2 * kGroupPixels];
  std::memcpy(in, src, 16 * blocks);
  group(in, out, out + kGroupPixels, out + kGroupPixels * 3 / 2, k);
  std::memcpy(y, out, 2 * rest);
  std::memcpy(cb, out + kGroupPixels, rest);
  std::memcpy(cr, out + kGroupPixels * 3 / 2, rest);
}

}  // namespace qx::sse2
