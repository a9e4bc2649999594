/* Every export checked as a host uses it: resolved by name, called with the declared argument
 * lists on random lines, its output compared byte for byte with the scalar form's. */
#ifndef QX_TEST_HOST_CHECK_H
#define QX_TEST_HOST_CHECK_H

#ifdef __cplusplus
extern "C" {
#endif

/* Every export, with the shape of its argument list (the shapes are named in check.c). */
/* clang-format off */
#define QX_EXPORTS(M)                                                            \
  M(qx_pixinit, kStub) M(qx_r210argb, kStub) M(qx_fill, kFill)                   \
  M(qx_argb2ayuv, kLine) M(qx_ayuv2argb, kLine) M(qx_v210yuv422p10, kV210)       \
  M(qx_blend, kBlend) M(qx_blend_t, kBlendT) M(qx_blend_m, kBlendM)              \
  M(qx_blend_mt, kBlendMt) M(qx_blend_mlt, kBlendMlt)                            \
  M(qx_lblend, kBlend) M(qx_lblend_t, kBlendT) M(qx_lblend_m, kBlendM)           \
  M(qx_lblend_mt, kBlendMt) M(qx_lblend_mlt, kBlendMlt)                          \
  M(qx_sblend, kBlend) M(qx_sblend_t, kBlendT) M(qx_sblend_m, kBlendM)           \
  M(qx_sblend_mt, kBlendMt) M(qx_sblend_mlt, kBlendMlt)                          \
  M(qx_alpha, kLine) M(qx_mask, kMask) M(qx_lin_pix, kLinPix)                    \
  M(qx_zoom_in2x1d, kZoom1d) M(qx_zoom_in2x2d, kZoom2d) M(qx_scale_1d, kScale1d) \
  M(qx_scale_horz, kScaleHorz) M(qx_zoom_outNx, kZoomOut)
/* clang-format on */

/* Any entry point; cast back to its declared type before it is called. */
typedef void (*qx_entry)(void);

/* The library's entry for an export's name (or null), as the host under test resolves it. */
typedef qx_entry (*qx_resolver)(const char* name, void* context);

/* The scalar form of an export, with the export's own argument list; null for the no-op entry.
 * Linked from the library's internal archive. */
qx_entry qx_reference(const char* name);

/* Resolves all 29 names through `resolve` and checks each on random lines (counts across the
 * group boundaries and tails, pointer offsets, extreme opacities and weights, output regions
 * beyond what a call may write). Prints one line per failure; returns the number of failures. */
int qx_check_exports(qx_resolver resolve, void* context);

#ifdef __cplusplus
}
#endif

#endif
