// qx_alpha, qx_mask, qx_lin_pix and qx_fill: every form and the export against the scalar form
// (see line_fuzz.h).
#include "line_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto kernels = qx::fuzz::line_kernels_named({"alpha", "mask", "lin_pix", "fill"});
  qx::fuzz::Input in(data, size);
  const auto* kernel = kernels[in.ConsumeIntegralInRange<std::size_t>(0, kernels.size() - 1)];
  qx::fuzz::fuzz_line_kernel(in, *kernel);
  return 0;
}
