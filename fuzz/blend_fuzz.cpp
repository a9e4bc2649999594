// The three blend families (qx_blend, qx_lblend, qx_sblend), each in its five variants: every form
// and the export against the scalar form (see line_fuzz.h).
#include "line_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto kernels = qx::fuzz::line_kernels_named(
      {"blend", "blend_t", "blend_m", "blend_mt", "blend_mlt", "lblend", "lblend_t", "lblend_m",
       "lblend_mt", "lblend_mlt", "sblend", "sblend_t", "sblend_m", "sblend_mt", "sblend_mlt"});
  qx::fuzz::Input in(data, size);
  const auto* kernel = kernels[in.ConsumeIntegralInRange<std::size_t>(0, kernels.size() - 1)];
  qx::fuzz::fuzz_line_kernel(in, *kernel);
  return 0;
}
