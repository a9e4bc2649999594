// v210 unpacking over the vector policy V, for the instruction sets whose policy moves bytes
// across the vector (permute_bytes2). Each output vector of 16-bit samples is one byte permute of
// two adjacent input vectors, which puts each sample's field in the two bytes of its lane, and a
// multiply and shift that cut the 10 bits out of them.
#include <array>
#include <cstddef>
#include <cstring>

#include "convert/convert.h"
#include "simd/vector.h"

namespace qx::QX_SIMD {
namespace {

// A v210 line is one stream of 10-bit fields, three per little-endian 32-bit word (bits 0, 10 and
// 20), in the order Cb Y Cr Y for each pair of pixels: six pixels per 16-byte block.
constexpr int kBytes = 4 * V::kPixels;  // bytes per vector
constexpr int kSamples = kBytes / 2;    // 16-bit samples per vector
// A chunk is four input vectors: kChunkPixels pixels, whose Y samples fill three vectors
// (Y vector m holds samples m * kSamples ..) and whose chroma fills three more (chroma vector m
// holds Cb samples m * kSamples / 2 .. in its first half and the Cr samples of the same pixels in
// its second). Output vector m is drawn from input vectors m and m + 1 alone.
constexpr int kChunkPixels = 3 * kSamples;
constexpr int kStepPixels = 2 * kChunkPixels;  // a step is two chunks: whole chroma vectors

constexpr int field_bit(int field) { return 32 * (field / 3) + 10 * (field % 3); }

// The bit at which sample `lane` of output vector m starts, counted from input vector m.
constexpr int sample_bit(int m, bool chroma, int lane) {
  int field;
  if (!chroma) {
    const int k = m * kSamples + lane;  // Y sample k: pixel pair k / 2
    field = 4 * (k / 2) + 1 + 2 * (k % 2);
  } else {
    const int q = m * kSamples / 2 + lane % (kSamples / 2);  // pixel pair q
    field = 4 * q + (lane < kSamples / 2 ? 0 : 2);           // Cb, or Cr
  }
  return field_bit(field) - 8 * kBytes * m;
}

// Byte permute of output vector m: each lane takes the two bytes that hold its field.
constexpr std::array<std::uint8_t, kBytes> permute_table(int m, bool chroma) {
  std::array<std::uint8_t, kBytes> t{};
  for (int lane = 0; lane < kSamples; ++lane) {
    const int byte = sample_bit(m, chroma, lane) / 8;
    if (byte < 0 || byte + 1 >= 2 * kBytes) throw "field outside the two input vectors";
    t[2 * lane] = static_cast<std::uint8_t>(byte);
    t[2 * lane + 1] = static_cast<std::uint8_t>(byte + 1);
  }
  return t;
}

// Multiplier of each lane: the field, at bit 0, 2 or 4 of the lane, moves to bits 6..15.
constexpr std::array<std::uint16_t, kSamples> multiplier_table(int m, bool chroma) {
  std::array<std::uint16_t, kSamples> t{};
  for (int lane = 0; lane < kSamples; ++lane)
    t[lane] = static_cast<std::uint16_t>(1u << (6 - sample_bit(m, chroma, lane) % 8));
  return t;
}

// (Aligned, so that no load of a table splits a cache line.)
template <int m, bool kChroma>
alignas(64) constexpr std::array<std::uint8_t, kBytes> kPermute = permute_table(m, kChroma);
template <int m, bool kChroma>
alignas(64) constexpr std::array<std::uint16_t, kSamples> kMultiplier = multiplier_table(m,
                                                                                         kChroma);

// Output vector m of the chunk in input vectors a = m, b = m + 1.
template <int m, bool kChroma>
V::Px samples(V::Px a, V::Px b) {
  const V::Px bytes = V::permute_bytes2<kPermute<m, kChroma>>(a, b);
  return V::srl16(V::mullo16(bytes, V::load(kMultiplier<m, kChroma>.data())), 6);
}

struct Chunk {
  V::Px y[3], c[3];
};

Chunk chunk(const std::uint8_t* in) {
  const V::Px v0 = V::load(in), v1 = V::load(in + kBytes), v2 = V::load(in + 2 * kBytes),
              v3 = V::load(in + 3 * kBytes);
  return {{samples<0, false>(v0, v1), samples<1, false>(v1, v2), samples<2, false>(v2, v3)},
          {samples<0, true>(v0, v1), samples<1, true>(v1, v2), samples<2, true>(v2, v3)}};
}

// kStepPixels pixels: 8 vectors of v210 at `in` to 6 vectors of Y, 3 of Cb and 3 of Cr.
void step(const std::uint8_t* in, std::uint16_t* y, std::uint16_t* cb, std::uint16_t* cr) {
  const Chunk a = chunk(in), b = chunk(in + 4 * kBytes);
  for (int i = 0; i < 3; ++i) {
    V::store(y + i * kSamples, a.y[i]);
    V::store(y + (i + 3) * kSamples, b.y[i]);
  }
  const V::Px c[6] = {a.c[0], a.c[1], a.c[2], b.c[0], b.c[1], b.c[2]};
  for (int i = 0; i < 3; ++i) {
    V::store(cb + i * kSamples, V::concat_lo(c[2 * i], c[2 * i + 1]));
    V::store(cr + i * kSamples, V::concat_hi(c[2 * i], c[2 * i + 1]));
  }
}

}  // namespace

void v210yuv422p10(std::uint16_t* dst, const std::uint32_t* src, std::int32_t count) {
  if (count <= 0 || count % 2 != 0) return;
  const std::size_t n = static_cast<std::size_t>(count);
  std::uint16_t* const y = dst;
  std::uint16_t* const cb = dst + n;
  std::uint16_t* const cr = cb + n / 2;
  const auto* in = reinterpret_cast<const std::uint8_t*>(src);
  std::size_t done = 0;
  for (; n - done >= kStepPixels; done += kStepPixels)
    step(in + done / 6 * 16, y + done, cb + done / 2, cr + done / 2);
  if (done == n) return;
  if (done > 0) {
    // The rest of a line longer than a step: one more step ending as near the line's end as a
    // block boundary allows (rewriting samples with the values they have), then the last pixels
    // of the last block one pair at a time.
    const std::size_t last = (n - kStepPixels) / 6 * 6;
    step(in + last / 6 * 16, y + last, cb + last / 2, cr + last / 2);
    v210_pairs(y, cb, cr, src, (last + kStepPixels) / 2, n / 2);
    return;
  }
  // A line shorter than a step, through the same step in scratch: only the blocks that hold its
  // pixels are read, only its samples written.
  alignas(64) std::uint8_t block[8 * kBytes] = {};
  alignas(64) std::uint16_t out[12 * kSamples];
  std::memcpy(block, in, 16 * ((n + 5) / 6));
  step(block, out, out + 6 * kSamples, out + 9 * kSamples);
  std::memcpy(y, out, 2 * n);
  std::memcpy(cb, out + 6 * kSamples, n);
  std::memcpy(cr, out + 9 * kSamples, n);
}

}  // namespace qx::QX_SIMD
