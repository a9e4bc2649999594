/* Each export against its scalar form, called through the entry a host resolved (see check.h). */
#include "host/check.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "qxpixlib.h"

enum Shape {
  kStub,      /* ()                                    qx_pixinit, qx_r210argb */
  kFill,      /* (dst, value, count) */
  kLine,      /* (dst, src, count)                     conversions, qx_alpha */
  kV210,      /* (uint16_t* dst, src, count) */
  kMask,      /* (dst, src, mask, count) */
  kLinPix,    /* (dst, src1, src2, weight, count) */
  kBlend,     /* (dst, bg, fg, count) and the variants' extra arguments below */
  kBlendT,    /* + opacity */
  kBlendM,    /* + mask */
  kBlendMt,   /* + mask, opacity */
  kBlendMlt,  /* + mask, lut, opacity */
  kZoom1d,    /* (dst, src, count), 16-byte aligned */
  kZoom2d,    /* (dst, src, width, height, src_stride), 16-byte aligned */
  kScale1d,   /* (dst, dst_count, src, src_count) */
  kScaleHorz, /* (dst, dst_width, dst_stride, src, src_width, height, src_stride) */
  kZoomOut    /* (dst, dst_width, dst_height, src, src_width, src_height) */
};

#define QX_ROW(name, shape) {#name, shape},
static const struct {
  const char* name;
  enum Shape shape;
} kExports[] = {QX_EXPORTS(QX_ROW)};
#undef QX_ROW

typedef void(QX_CALL* StubFn)(void);
typedef void(QX_CALL* FillFn)(uint32_t*, uint32_t, int32_t);
typedef void(QX_CALL* LineFn)(uint32_t*, const uint32_t*, int32_t);
typedef void(QX_CALL* V210Fn)(uint16_t*, const uint32_t*, int32_t);
typedef void(QX_CALL* MaskFn)(uint32_t*, const uint32_t*, const uint8_t*, int32_t);
typedef void(QX_CALL* LinPixFn)(uint32_t*, const uint32_t*, const uint32_t*, uint32_t, int32_t);
typedef void(QX_CALL* BlendFn)(uint32_t*, const uint32_t*, const uint32_t*, int32_t);
typedef void(QX_CALL* BlendTFn)(uint32_t*, const uint32_t*, const uint32_t*, int32_t, uint32_t);
typedef void(QX_CALL* BlendMFn)(uint32_t*, const uint32_t*, const uint32_t*, int32_t,
                                const uint8_t*);
typedef void(QX_CALL* BlendMtFn)(uint32_t*, const uint32_t*, const uint32_t*, int32_t,
                                 const uint8_t*, uint32_t);
typedef void(QX_CALL* BlendMltFn)(uint32_t*, const uint32_t*, const uint32_t*, int32_t,
                                  const uint8_t*, const uint8_t*, uint32_t);
typedef void(QX_CALL* Zoom2dFn)(uint32_t*, const uint32_t*, int32_t, int32_t, int32_t);
typedef void(QX_CALL* Scale1dFn)(uint32_t*, int32_t, const uint32_t*, int32_t);
typedef void(QX_CALL* ScaleHorzFn)(uint32_t*, int32_t, int32_t, const uint32_t*, int32_t, int32_t,
                                   int32_t);
typedef void(QX_CALL* ZoomOutFn)(uint32_t*, int32_t, int32_t, const uint32_t*, int32_t, int32_t);

/* Lines up to kLongest pixels; every output fits 2 * kMax pixels, every read kMax. */
enum { kLongest = 1923, kMax = 4096 };
static _Alignas(16) uint32_t in1[kMax], in2[kMax], got[2 * kMax], want[2 * kMax];
static _Alignas(16) uint8_t mask[kMax], lut[256];

static const int32_t kCounts[] = {-5, -1, 0,  1,  2,  3,  4,  5,    6,    7,
                                  8,  9,  15, 16, 17, 34, 67, 1920, 1921, kLongest};
static const uint32_t kParams[] = {0, 1, 127, 128, 255, 256, 257, 0x80000000u, 0xFFFFFFFFu};

static uint32_t rng;
static uint32_t next(void) {
  rng ^= rng << 13;
  rng ^= rng >> 17;
  rng ^= rng << 5;
  return rng;
}
/* Random bytes, about one in four of them 0, 1, 254 or 255 (alpha edges, saturated channels). */
static void randomise(void* p, size_t bytes) {
  static const uint8_t kEdges[] = {0, 1, 254, 255};
  uint8_t* b = (uint8_t*)p;
  for (size_t i = 0; i < bytes; ++i) {
    const uint32_t r = next();
    b[i] = (r & 3) == 0 ? kEdges[(r >> 2) & 3] : (uint8_t)(r >> 8);
  }
}

/* One call of `fn` of the given shape into `out`, its arguments derived from trial `t`. */
static void call(enum Shape shape, qx_entry fn, uint32_t* out, int t) {
  const int32_t n = kCounts[t];
  const uint32_t param = kParams[t % (sizeof kParams / sizeof kParams[0])];
  /* Line kernels take any 4-byte alignment: vary each pointer's offset mod 16. */
  uint32_t* d = out + (t & 3);
  const uint32_t* a = in1 + ((t >> 1) & 3);
  const uint32_t* b = in2 + ((t * 3 >> 2) & 3);
  const uint8_t* m = mask + (t % 3);
  switch (shape) {
    case kStub:
      ((StubFn)fn)();
      break;
    case kFill:
      ((FillFn)fn)(d, param ^ 0x5A5A5A5Au, n);
      break;
    case kLine:
      ((LineFn)fn)(d, a, n);
      break;
    case kV210:
      ((V210Fn)fn)((uint16_t*)d, a, n);
      break;
    case kMask:
      ((MaskFn)fn)(d, a, m, n);
      break;
    case kLinPix:
      ((LinPixFn)fn)(d, a, b, param, n);
      break;
    case kBlend:
      ((BlendFn)fn)(d, a, b, n);
      break;
    case kBlendT:
      ((BlendTFn)fn)(d, a, b, n, param);
      break;
    case kBlendM:
      ((BlendMFn)fn)(d, a, b, n, m);
      break;
    case kBlendMt:
      ((BlendMtFn)fn)(d, a, b, n, m, param);
      break;
    case kBlendMlt:
      ((BlendMltFn)fn)(d, a, b, n, m, lut, param);
      break;
    case kZoom1d:
      ((LineFn)fn)(out, in1, n);
      break;
    case kZoom2d: { /* width even, rows a multiple of four pixels apart; height -1 .. 3 */
      const int32_t width = n & 62, height = t % 5 - 1;
      ((Zoom2dFn)fn)(out, in1, width, height, (width + 3) / 4 * 4 + 4 * (t & 1));
      break;
    }
    case kScale1d:
      ((Scale1dFn)fn)(d, n, a, (int32_t)(in1[kMax - 1] % 2000));
      break;
    case kScaleHorz: { /* up to 4 rows of up to 99 pixels from rows of up to 201 */
      const int32_t width = n % 100, src_width = (int32_t)(in1[kMax - 1] % 200);
      ((ScaleHorzFn)fn)(d, width, width + t % 3, a, src_width, t % 5, src_width + (t & 1));
      break;
    }
    case kZoomOut: { /* the source holds every sample the rounded-up factors reach */
      const int32_t width = n < 1 ? n : 1 + n % 40, height = 1 + t % 6;
      ((ZoomOutFn)fn)(d, width, height, a, width + (int32_t)(in1[kMax - 1] % 40),
                      height + (int32_t)(in1[kMax - 2] % 5));
      break;
    }
  }
}

int qx_check_exports(qx_resolver resolve, void* context) {
  int failures = 0;
  for (size_t e = 0; e < sizeof kExports / sizeof kExports[0]; ++e) {
    const char* name = kExports[e].name;
    const qx_entry fn = resolve(name, context);
    const qx_entry ref = qx_reference(name);
    if (!fn) {
      printf("%s: not found\n", name);
      ++failures;
      continue;
    }
    rng = 0x9E3779B9u ^ (uint32_t)e;
    for (int t = 0; t < (int)(sizeof kCounts / sizeof kCounts[0]); ++t) {
      randomise(in1, sizeof in1);
      randomise(in2, sizeof in2);
      randomise(mask, sizeof mask);
      randomise(lut, sizeof lut);
      randomise(got, sizeof got); /* what a call must leave alone keeps this */
      memcpy(want, got, sizeof want);
      if (ref) call(kExports[e].shape, ref, want, t);
      call(kExports[e].shape, fn, got, t);
      if (memcmp(got, want, sizeof got) != 0) {
        size_t i = 0;
        while (got[i] == want[i]) ++i;
        printf("%s: trial %d (count %d): pixel %u is 0x%08x, the scalar form gives 0x%08x\n", name,
               t, (int)kCounts[t], (unsigned)i, (unsigned)got[i], (unsigned)want[i]);
        ++failures;
        break;
      }
    }
  }
  return failures;
}
