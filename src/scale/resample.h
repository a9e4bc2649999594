// Line resampling by two-tap linear interpolation (qx_scale_1d, qx_scale_horz) and picture
// shrinking by whole factors (qx_zoom_outNx).
//
// A resampled line is described by a position table: one signed 32-bit fixed-point source position
// per output pixel, 8 fraction bits (index = position >> 8, fraction f = position & 255). The
// table is built once per call by scale_step_table and shared by every row; scale_line_interp
// turns one source line into one output line from it. scale_line_interp is the only part with
// instruction-set forms.
#pragma once

#include <cstdint>

#include "frame/isa.h"

namespace qx {

// Fills table[0 .. dst_count-1]: table[0] = start, then steps of (|end - start| - 1) / (dst_count -
// 1) (negated when end < start), and the last entry pinned to end - 1, where end = (src_count - 1)
// * 256 is the position of the last source pixel. With start = 0 every position p satisfies
// p >> 8 <= src_count - 2, so no output needs a pixel past src_count - 1.
// Requires dst_count >= 2 and every intermediate to fit a signed 32-bit integer.
void scale_step_table(std::int32_t* table, std::int32_t start, std::int32_t src_count,
                      std::int32_t dst_count);

// Writes 4 * (dst_count / 4) output pixels; the last dst_count % 4 are left alone. Per group of
// four outputs j = 4k .. 4k+3, with i_j = table[j] >> 8 (logical) and f_j = table[j] & 255, the
// left and right taps are paired as
//   out 4k   = mix(P[i_4k],       P[i_4k + 1],     f_4k)
//   out 4k+1 = mix(P[i_4k + 1],   P[i_4k+1 + 1],   f_4k+1)
//   out 4k+2 = mix(P[i_4k+2],     P[i_4k+2 + 1],   f_4k+2)
//   out 4k+3 = mix(P[i_4k+2 + 1], P[i_4k+3 + 1],   f_4k+3)
// (the odd outputs take as left tap the right neighbour of the preceding output's left tap, which
// is what pairing adjacent-pixel loads gives), and mix(l, r, f) is, for each of the four bytes,
// l * (256 - f) / 256 + r * f / 256 with each product truncated on its own.
// `table` is 16-byte aligned and holds at least 4 * (dst_count / 4) entries whose taps lie in
// `src`; `src` and `dst` need no alignment.
using ScaleLineFn = void(std::uint32_t* dst, const std::uint32_t* src, std::int32_t dst_count,
                         const std::int32_t* table);

namespace scalar {
ScaleLineFn scale_line_interp;
}
#if QX_X86
namespace sse2 {
ScaleLineFn scale_line_interp;
}
namespace ssse3 {
ScaleLineFn scale_line_interp;
}
#endif

inline constexpr Form<ScaleLineFn> scale_line_interp_forms[] = {
    {Isa::kScalar, scalar::scale_line_interp},
#if QX_X86
    {Isa::kSse2, sse2::scale_line_interp},
    {Isa::kSsse3, ssse3::scale_line_interp},
#endif
};

// The two linear scalers, running `line` on each row. Arguments that would divide by zero or
// address outside the lines write nothing: a dst width below 2, a src width below 2 or above
// kMaxScaleSrc (its last position would not fit), or a position table that cannot be allocated.
// height <= 0 writes nothing. Rows lie dst_stride / src_stride pixels apart (either sign).
inline constexpr std::int32_t kMaxScaleSrc = 1 << 23;
void scale_1d(ScaleLineFn* line, std::uint32_t* dst, std::int32_t dst_count,
              const std::uint32_t* src, std::int32_t src_count);
void scale_horz(ScaleLineFn* line, std::uint32_t* dst, std::int32_t dst_width,
                std::int32_t dst_stride, const std::uint32_t* src, std::int32_t src_width,
                std::int32_t height, std::int32_t src_stride);

// dst (packed, dst_width x dst_height) takes the top-left pixel of each fx x fy block of src
// (packed, row pitch src_width), fx and fy the ratios rounded up. Samples are not clamped: they may
// come from the next source row or from rows past src_height, which the caller sizes src for.
// Any width or height <= 0 writes nothing.
using ZoomOutFn = void(std::uint32_t* dst, std::int32_t dst_width, std::int32_t dst_height,
                       const std::uint32_t* src, std::int32_t src_width, std::int32_t src_height);

namespace scalar {
ZoomOutFn zoom_out;
}

inline constexpr Form<ZoomOutFn> zoom_out_forms[] = {{Isa::kScalar, scalar::zoom_out}};

}  // namespace qx
