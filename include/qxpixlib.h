/* qxpixlib: fixed-point pixel kernels for hosts that work one scan line at a time.
 *
 * Pixels are 32-bit words stored little-endian. Two layouts share the word:
 *   ARGB: bytes in memory B, G, R, A  (the word 0xAARRGGBB)
 *   AYUV: bytes in memory U, Y, V, A  (the word 0xAAVVYYUU), BT.601 studio range
 * Alpha is always byte 3: 0 is transparent, 255 opaque. Kernels that treat bytes 0..2 alike
 * (blends, fill, interpolation, zoom, scaling) serve both layouts.
 *
 * Every buffer belongs to the caller and is only borrowed for the call. Results are exact
 * integer arithmetic, identical on every processor. Unless a function says otherwise:
 *   - a line holds `count` packed pixels at any 4-byte alignment;
 *   - `count` <= 0 writes nothing; exactly `count` pixels of `dst` are written;
 *   - `dst` may be the very same pointer as any one input line (in-place use), no other overlap;
 *   - nothing past the last pixel of an input line is read;
 *   - mask lines hold one byte per pixel at any alignment and must stay readable up to the next
 *     multiple of 4 pixels (they are read four bytes at a time; the extra bytes never reach dst);
 *     when `count` <= 0 nothing at all is read, so the mask may then be null;
 *   - `lut` points to 256 bytes, all of which may be read;
 *   - opacities and weights are in 1/256 units; any value above 256, and so any negative value
 *     passed as a signed integer, acts as 256.
 * Every function is re-entrant: calls on disjoint output lines may run on any threads at once.
 *
 * Instruction sets: each function has a portable form and, on x86 and 64-bit ARM, vector forms
 * (on x86 for wider and wider instruction sets; on ARM NEON), all giving the same bytes; the
 * library uses the best one the processor runs. The environment variable QXPIXLIB_MAX_ISA caps
 * that choice at a tier, to run as an older processor would (for testing, or to compare speeds):
 * scalar, sse2, ssse3, avx2, avx512 (F, BW, VL) or avx512vbmi on x86, scalar or neon on 64-bit
 * ARM, case ignored. Each function then uses its best form at or below the tier (scalar means no
 * vector code). It is read once per process, before the first function chooses its form; setting
 * it later has no effect, and a value that names no tier is ignored. */
#ifndef QXPIXLIB_H
#define QXPIXLIB_H

#include <stdint.h>

/* QXPIXLIB_VERSION_MAJOR, _MINOR, _PATCH and QXPIXLIB_VERSION_STRING ("1.0.0"): the version of the
 * library this header came with, installed beside it. */
#include "qxpixlib_version.h"

#if defined(_WIN32) || defined(__CYGWIN__)
#if defined(QXPIXLIB_BUILDING)
#define QX_API __declspec(dllexport)
#elif defined(QXPIXLIB_STATIC) /* linked into the program itself, not through the DLL */
#define QX_API
#else
#define QX_API __declspec(dllimport)
#endif
#elif defined(QXPIXLIB_BUILDING) && (defined(__GNUC__) || defined(__clang__))
#define QX_API __attribute__((visibility("default")))
#else
#define QX_API
#endif

/* The calling convention of every export: cdecl on 32-bit x86 (caller pops), platform default
 * elsewhere. */
#if defined(_M_IX86) || defined(__i386__)
#if defined(_MSC_VER) || defined(__MINGW32__)
#define QX_CALL __cdecl
#else
#define QX_CALL __attribute__((__cdecl__))
#endif
#else
#define QX_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Library frame ---------------------------------------------------------------------- */

/* Initialisation entry. Does nothing and touches no memory: the library is ready as soon as it is
 * loaded. Safe to call at any time, any number of times. */
QX_API void QX_CALL qx_pixinit(void);

/* The same entry as qx_pixinit under a second name (one address, two names). It converts nothing
 * and touches no memory, whatever arguments a caller passes. */
QX_API void QX_CALL qx_r210argb(void);

/* Writes `value` unchanged into each of the `count` pixels of `dst`. */
QX_API void QX_CALL qx_fill(uint32_t* dst, uint32_t value, int32_t count);

/* ---- Colour-format conversion ----------------------------------------------------------- */

/* ARGB to AYUV (BT.601 studio range, 13-bit fixed point, truncating); alpha copied. */
QX_API void QX_CALL qx_argb2ayuv(uint32_t* dst, const uint32_t* src, int32_t count);

/* AYUV (BT.601 studio range) to ARGB, 13-bit fixed point, truncating; alpha copied. */
QX_API void QX_CALL qx_ayuv2argb(uint32_t* dst, const uint32_t* src, int32_t count);

/* Unpacks one line of v210 (six pixels per 16-byte block) into three contiguous planes of 16-bit
 * samples holding the 10-bit values: `count` Y samples at dst, `count` / 2 Cb samples at
 * dst + count, `count` / 2 Cr samples at dst + 3 * count / 2 (4 * count bytes in all, nothing
 * written past them). Bits 30-31 of the v210 words are ignored. `count` must be even; an odd or
 * non-positive count reads and writes nothing. Any even count works, not only whole 48-pixel
 * groups: only the (count + 5) / 6 blocks that hold pixels of the line are read. dst needs 2-byte
 * and src 4-byte alignment, nothing more; the output must not overlap the input. */
QX_API void QX_CALL qx_v210yuv422p10(uint16_t* dst, const uint32_t* src, int32_t count);

/* ---- Alpha blend: premultiplied over, all scales 1/256 ---------------------------------- *
 * With w the foreground weight (fg.a for qx_blend) and v = 256 - w, per colour channel
 *   dst.c = fg.c * w / 256 + bg.c * bg.a * v / 65536,   dst.a = 255 * w / 256 + 255 * bg.a * v /
 * 65536 each quotient truncated on its own; no output byte is ever 255. The variants form w as _t:
 * fg.a * T / 256;  _m: fg.a * m / 256;  _mt: fg.a * (m * T / 256) / 256; _mlt: fg.a * (lut[m] * T /
 * 256) / 256,   T = min(opacity, 256) unsigned, m = mask[i]. When count % 4 == 2 the two last
 * pixels are both blended with the last fg pixel, and the fg pixel before it is not read. The same
 * holds for the qx_lblend and qx_sblend families. */
QX_API void QX_CALL qx_blend(uint32_t* dst, const uint32_t* bg, const uint32_t* fg, int32_t count);
QX_API void QX_CALL qx_blend_t(uint32_t* dst, const uint32_t* bg, const uint32_t* fg, int32_t count,
                               uint32_t opacity);
QX_API void QX_CALL qx_blend_m(uint32_t* dst, const uint32_t* bg, const uint32_t* fg, int32_t count,
                               const uint8_t* mask);
QX_API void QX_CALL qx_blend_mt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                int32_t count, const uint8_t* mask, uint32_t opacity);
QX_API void QX_CALL qx_blend_mlt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                 int32_t count, const uint8_t* mask, const uint8_t* lut,
                                 uint32_t opacity);

/* ---- Linear blend: colour mixed by the foreground weight, additive alpha ------------------ *
 *   dst.c = bg.c * (256 - w) / 256 + fg.c * w / 256,   dst.a = min(255, bg.a + fg.a * w / 256)
 * with w formed as in the qx_blend family. */
QX_API void QX_CALL qx_lblend(uint32_t* dst, const uint32_t* bg, const uint32_t* fg, int32_t count);
QX_API void QX_CALL qx_lblend_t(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                int32_t count, uint32_t opacity);
QX_API void QX_CALL qx_lblend_m(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                int32_t count, const uint8_t* mask);
QX_API void QX_CALL qx_lblend_mt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                 int32_t count, const uint8_t* mask, uint32_t opacity);
QX_API void QX_CALL qx_lblend_mlt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                  int32_t count, const uint8_t* mask, const uint8_t* lut,
                                  uint32_t opacity);

/* ---- Straight-alpha compositing with a true resulting alpha ------------------------------ *
 * With F the effective foreground alpha (formed as w in the qx_blend family):
 *   A = F + bg.a * (255 - F) / 256,  K = (65535 / A) * F / 256 (0 when A = 0),
 *   dst.c = bg.c + floor(K * (fg.c - bg.c) / 256),  dst.a = A. */
QX_API void QX_CALL qx_sblend(uint32_t* dst, const uint32_t* bg, const uint32_t* fg, int32_t count);
QX_API void QX_CALL qx_sblend_t(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                int32_t count, uint32_t opacity);
QX_API void QX_CALL qx_sblend_m(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                int32_t count, const uint8_t* mask);
QX_API void QX_CALL qx_sblend_mt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                 int32_t count, const uint8_t* mask, uint32_t opacity);
QX_API void QX_CALL qx_sblend_mlt(uint32_t* dst, const uint32_t* bg, const uint32_t* fg,
                                  int32_t count, const uint8_t* mask, const uint8_t* lut,
                                  uint32_t opacity);

/* ---- Alpha and mask operations ---------------------------------------------------------- */

/* Each output pixel holds the input pixel's alpha in all four bytes (a grey picture of alpha). */
QX_API void QX_CALL qx_alpha(uint32_t* dst, const uint32_t* src, int32_t count);

/* Copies the colour bytes and scales alpha by the mask: dst.a = src.a * mask[i] / 256. */
QX_API void QX_CALL qx_mask(uint32_t* dst, const uint32_t* src, const uint8_t* mask, int32_t count);

/* ---- Interpolation, zoom and scaling ---------------------------------------------------- */

/* Mixes two lines, every byte alike: dst = src1 * w / 256 + src2 * (256 - w) / 256, each quotient
 * truncated, w = min(weight, 256) unsigned. */
QX_API void QX_CALL qx_lin_pix(uint32_t* dst, const uint32_t* src1, const uint32_t* src2,
                               uint32_t weight, int32_t count);

/* Doubles a line: 8 * (count / 4) output pixels from the first 4 * (count / 4) source pixels,
 * out[2i] = (p[i-1] + p[i]) / 2 per byte (p[-1] = p[0]), out[2i+1] = p[i]. dst and src 16-byte
 * aligned; src readable for at least 16 bytes. */
QX_API void QX_CALL qx_zoom_in2x1d(uint32_t* dst, const uint32_t* src, int32_t count);

/* Doubles a picture of `height` rows of `width` pixels (rows `src_stride` pixels apart) into a
 * packed block of 2 * height rows of 2 * width pixels: even rows doubled as by qx_zoom_in2x1d, odd
 * rows the truncated average of their neighbours over the first 4 * (width / 2) pixels, the last
 * row a copy of the one before. A negative width writes nothing. dst, src and every row 16-byte
 * aligned (so width even and src_stride a multiple of 4); dst must not overlap src.
 * Two cases put bytes in dst that do not come from src:
 *   - width % 4 == 2: the last 4 pixels of every output row are what dst held before the call
 *     (even rows and the last row leave them unwritten; odd rows average those stale pixels).
 *   - height <= 0: nothing is read from src, but output row 1 is still overwritten with a copy of
 *     output row 0, which the call did not write (2 rows of dst must be writable). */
QX_API void QX_CALL qx_zoom_in2x2d(uint32_t* dst, const uint32_t* src, int32_t width,
                                   int32_t height, int32_t src_stride);

/* Resamples a line of src_count pixels to 4 * (dst_count / 4) pixels by two-tap linear
 * interpolation in 8-bit fixed point; the last dst_count % 4 pixels are not written. Positions
 * step by (256 * (src_count - 1) - 1) / (dst_count - 1) from 0, the last pinned to
 * 256 * (src_count - 1) - 1; within each group of four outputs the second and fourth take as left
 * tap the right neighbour of the preceding output's left tap. Each byte (alpha included) is
 * left * (256 - f) / 256 + right * f / 256, each product truncated. Only pixels 0 .. src_count - 1
 * are read. dst 16-byte aligned (the library tolerates any), src any alignment. dst_count < 2,
 * src_count < 2 and src_count > 2^23 write nothing. */
QX_API void QX_CALL qx_scale_1d(uint32_t* dst, int32_t dst_count, const uint32_t* src,
                                int32_t src_count);

/* qx_scale_1d applied to each of `height` rows (strides in pixels, either sign). height <= 0
 * writes nothing. Neither scaler allocates memory: positions are computed as the row is walked,
 * so a call cannot fail. */
QX_API void QX_CALL qx_scale_horz(uint32_t* dst, int32_t dst_width, int32_t dst_stride,
                                  const uint32_t* src, int32_t src_width, int32_t height,
                                  int32_t src_stride);

/* Shrinks a packed picture by whole factors, taking the top-left pixel of each block:
 * dst[r * dst_width + c] = src[r * fy * src_width + c * fx], fx = src_width / dst_width rounded up,
 * fy likewise. Any size <= 0 writes nothing.
 * Samples are not clamped, so src is read beyond its picture when the factors round up: output
 * row r reads source row r * fy, at or past src_height when fy * (dst_height - 1) >= src_height
 * (3x4 -> 3x3: fy = 2, the last output row is source row 4), and column c reads c * fx, in the
 * next source row when fx * (dst_width - 1) >= src_width (10 -> 6 wide: column 5 reads pixel 10).
 * src must be readable up to pixel (dst_height - 1) * fy * src_width + (dst_width - 1) * fx;
 * nothing past it is read. dst may be src itself when dst_width <= src_width (every sample is
 * read before its memory is written); no other overlap. */
QX_API void QX_CALL qx_zoom_outNx(uint32_t* dst, int32_t dst_width, int32_t dst_height,
                                  const uint32_t* src, int32_t src_width, int32_t src_height);

#ifdef __cplusplus
}
#endif

#endif /* QXPIXLIB_H */
